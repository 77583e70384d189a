#include "ui/ProjectNotices.h"

#include "ui/NameList.h"
#include "ui/widgets/NoticeBar.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {

const QString DocumentKey = QStringLiteral("document");
const QString LeftOutKey = QStringLiteral("left out");
const QString ReplacedKey = QStringLiteral("replaced");
const QString ViewingKey = QStringLiteral("viewing");
const QString UnkeptKey = QStringLiteral("unkept version");
const QString ExportKey = QStringLiteral("export");
const QString SaveAllKey = QStringLiteral("save all");

/// Characters of a parser's reason in the bar.
constexpr int ReasonLength = 80;

/// In a list that scrolls. A reason names a path.
constexpr int ListedNameLength = 200;
constexpr int ListedReasonLength = 5000;

/// "in line 3: Premature end of document".
QString PlaceOf(const DocumentFault& fault)
{
    QString reason = fault.reason;
    if (reason.endsWith(QLatin1Char('.'))) {
        reason.chop(1);
    }
    return QStringLiteral("in line %1: %2")
        .arg(QString::number(fault.line), ShortText(reason, ReasonLength));
}

/// Empty for a document that was read as a whole.
QString DocumentText(const ReadReport& report)
{
    const bool hasFile = !report.fileName.isEmpty();
    const QString name = hasFile ? QStringLiteral("'%1'").arg(ShortText(report.fileName))
                                 : QStringLiteral("The document");
    const QString loss =
        hasFile ? QStringLiteral(" Saving over it would remove what it holds.") : QString();
    if (!report.isRead) {
        const QString fault =
            report.fault ? QStringLiteral(": it has a fault %1").arg(PlaceOf(*report.fault))
                         : QString();
        return QStringLiteral("%1 could not be read%2.").arg(name, fault) + loss;
    }
    if (!report.holdsProject) {
        return QStringLiteral("%1 holds no project data.").arg(name) + loss;
    }
    if (report.fault) {
        return QStringLiteral("The document ends at a fault %1. What follows it was not read; "
                              "saving would remove it.")
            .arg(PlaceOf(*report.fault));
    }
    return {};
}

} // namespace

ProjectNotices::ProjectNotices(NoticeBar& bar)
    : m_bar(bar)
{
}

ProjectNotices::~ProjectNotices() = default;

void ProjectNotices::Withdraw()
{
    for (const QString& key :
         {ViewingKey, DocumentKey, LeftOutKey, ReplacedKey, ExportKey, SaveAllKey}) {
        m_bar.Withdraw(key);
    }
    if (m_list) {
        m_list->close();
    }
}

void ProjectNotices::ShowRead(const ReadReport& report)
{
    const QString text = DocumentText(report);
    if (!text.isEmpty()) {
        m_bar.Show({DocumentKey, text, {}});
    }
    if (report.isRead && !report.leftOut.isEmpty()) {
        ShowLeftOut(report);
    }
}

void ProjectNotices::ShowViewing(const QString& name, const std::function<void()>& edit)
{
    m_bar.Show({ViewingKey,
                QStringLiteral("'%1' is open for viewing.").arg(ShortText(name)),
                {{QStringLiteral("btnNoticeEdit"), QStringLiteral("Edit"), [edit] {
                      // The load withdraws the notice when it takes place.
                      edit();
                      return false;
                  }}}});
}

void ProjectNotices::FollowSave()
{
    for (const QString& key : {DocumentKey, LeftOutKey}) {
        m_bar.Withdraw(key);
    }
}

void ProjectNotices::ShowReplaced(const QStringList& layers, bool areKept,
                                  const std::function<void()>& showVersions)
{
    if (layers.isEmpty()) {
        return;
    }
    const bool isOne = layers.size() == 1;
    const QString text =
        isOne ? QStringLiteral("This save replaced 1 bitmap of another project: %1.")
              : QStringLiteral("This save replaced %2 bitmaps of another project: %1.");
    QStringList sorted = layers;
    sorted.sort();
    const QString names = NameList(sorted);
    Notice notice{
        ReplacedKey, isOne ? text.arg(names) : text.arg(names, QString::number(layers.size())), {}};
    if (areKept) {
        notice.text +=
            isOne ? QStringLiteral(" The old one is kept under Project \u2192 Earlier versions.")
                  : QStringLiteral(" The old ones are kept under Project \u2192 Earlier versions.");
        notice.buttons.push_back({QStringLiteral("btnNoticeVersions"),
                                  QStringLiteral("Earlier versions\u2026"), [showVersions] {
                                      showVersions();
                                      return true;
                                  }});
    }
    m_bar.Show(notice);
}

void ProjectNotices::ShowUnkept(const QString& problem)
{
    if (problem.isEmpty()) {
        m_bar.Withdraw(UnkeptKey);
    } else {
        m_bar.Show({UnkeptKey, problem, {}});
    }
}

void ProjectNotices::FollowExport(bool tickedOnly, int ticked, int all)
{
    m_bar.Withdraw(ExportKey);
    if (!tickedOnly) {
        return;
    }
    if (all == 0) {
        m_bar.Show(
            {ExportKey, QStringLiteral("There are no territory types, nothing was written."), {}});
    } else if (ticked == 0) {
        m_bar.Show({ExportKey,
                    QStringLiteral("0 of %1 types are ticked, nothing was written.").arg(all),
                    {}});
    }
}

void ProjectNotices::FollowSaveAll(bool hasLayers)
{
    m_bar.Withdraw(SaveAllKey);
    if (!hasLayers) {
        m_bar.Show({SaveAllKey,
                    QStringLiteral("There are no layers, nothing was saved or exported."),
                    {}});
    }
}

void ProjectNotices::ShowLeftOut(const ReadReport& report)
{
    const QVector<ReadReport::LeftOutLayer> layers = report.leftOut;
    QStringList names;
    for (const ReadReport::LeftOutLayer& layer : layers) {
        names.append(layer.name);
    }
    const bool isOne = layers.size() == 1;
    const QString text = isOne ? QStringLiteral("%1 of %2 layers was left out: %3. Saving would "
                                                "remove it from the project.")
                               : QStringLiteral("%1 of %2 layers were left out: %3. Saving would "
                                                "remove them from the project.");
    m_bar.Show({LeftOutKey,
                text.arg(QString::number(layers.size()), QString::number(report.layerCount),
                         NameList(names)),
                {{QStringLiteral("btnNoticeShow"), QStringLiteral("Show"), [this, layers] {
                      ListLeftOut(layers);
                      return false;
                  }}}});
}

void ProjectNotices::ListLeftOut(const QVector<ReadReport::LeftOutLayer>& layers)
{
    if (m_list) {
        m_list->raise();
        m_list->activateWindow();
        return;
    }
    QStringList lines;
    for (const ReadReport::LeftOutLayer& layer : layers) {
        const QString name = ShortText(layer.name, ListedNameLength);
        const QString reason = ShortText(layer.reason, ListedReasonLength);
        lines.append(reason.isEmpty() ? name : QStringLiteral("%1: %2").arg(name, reason));
    }
    m_list = new QDialog(m_bar.window());
    m_list->setObjectName(QStringLiteral("DialogLeftOut"));
    m_list->setAttribute(Qt::WA_DeleteOnClose);
    m_list->setWindowTitle(QStringLiteral("Layers that were left out"));
    auto* text = new QPlainTextEdit(lines.join(QLatin1Char('\n')), m_list);
    text->setObjectName(QStringLiteral("txtLeftOut"));
    text->setReadOnly(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, m_list);
    QObject::connect(buttons, &QDialogButtonBox::rejected, m_list.data(), &QDialog::reject);
    auto* layout = new QVBoxLayout(m_list);
    layout->addWidget(text);
    layout->addWidget(buttons);
    constexpr QSize size(560, 240);
    m_list->resize(size);
    m_list->show();
}
