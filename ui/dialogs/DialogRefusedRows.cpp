#include "ui/dialogs/DialogRefusedRows.h"

#include "ui/NameList.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

DialogRefusedRows::DialogRefusedRows(const std::vector<SheetRefusal>& refusals, QWidget* parent)
    : QDialog(parent, Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
{
    // Texts of cells may be of any length.
    constexpr int longest = 300;
    constexpr QSize size(520, 300);
    setObjectName(QStringLiteral("DialogRefusedRows"));
    setWindowTitle(tr("Rows refused"));
    auto* label = new QLabel(tr("Nothing was changed, because these rows cannot be taken:"));
    label->setObjectName(QStringLiteral("lblRefused"));
    auto* list = new QListWidget;
    list->setObjectName(QStringLiteral("lstRefused"));
    list->setUniformItemSizes(true);
    for (const SheetRefusal& refusal : refusals) {
        list->addItem(ShortText(refusal.Text(), longest));
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(list);
    layout->addWidget(buttons);
    resize(size);
}
