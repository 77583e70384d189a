#pragma once

#include <QFrame>
#include <QString>

#include <deque>
#include <functional>
#include <vector>

class QHBoxLayout;
class QLabel;
class QToolButton;

/// A button of a notice.
struct NoticeButton
{
    /// The object name.
    QString name;
    QString text;
    /// Called by a click. The notice goes away when it returns true.
    std::function<bool()> act;
};

/// Something that the user should know, and may act upon or not.
struct Notice
{
    /// What it is about: a newer notice with the same key takes the place of the older one.
    QString key;
    QString text;
    std::vector<NoticeButton> buttons;
};

/// One line above the map for what the user should know. It asks nothing and blocks nothing.
/// Several notices wait in line, and each has a button that dismisses it. The bar is hidden while
/// there is none.
class NoticeBar : public QFrame
{
    Q_OBJECT

public:
    explicit NoticeBar(QWidget* parent = nullptr);
    ~NoticeBar() override;

    /// While the bar is shown, the widget may be lower by the bar's height: so the window needs no
    /// more room than without the bar. Both must be in the same column of a layout.
    void TakeRoomFrom(QWidget& widget);

    void Show(const Notice& notice);
    /// Does nothing when there is none with this key.
    void Withdraw(const QString& key);
    /// Whether a notice with this key is shown or waits.
    bool Has(const QString& key) const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void ShowFirst();
    void TakeRoom();
    void Press(const NoticeButton& button);

    std::deque<Notice> m_notices;
    QLabel* m_text;
    QLabel* m_count;
    QHBoxLayout* m_buttons;
    QToolButton* m_close;
    QWidget* m_roomGiver = nullptr;
    /// The minimum height that widget had, in pixels.
    int m_fullMinimum = 0;
};
