#pragma once

#include "document/Document.h"
#include "document/Problems.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include <functional>

/// How long a check may take on a slow machine, in milliseconds.
constexpr int Longest = 20000;

/// The small project with a territory that is hidden and a zone with two faults.
struct BrokenFixture
{
    explicit BrokenFixture(const std::function<QByteArray(QByteArray)>& edit = {})
    {
        path = fixture.WriteProject();
        QByteArray text = ReadBytes(path);
        // It covers no other, and the world ends far from it.
        text.replace("x=\"100\" z=\"540\"", "x=\"300\" z=\"300\"");
        text.replace("smin=\"1\"", "smin=\"9\"");
        text.replace("r=\"60\"", "r=\"40\"");
        text.replace("name=\"North\" visible=\"1\"", "name=\"North\" visible=\"0\"");
        WriteBytes(path, edit ? edit(text) : text);
        fixture.Load(path);
        fixture.Trigger("actionProblems");
        Wait();
    }

    void Wait() const
    {
        // Qt asks once more at the end, and the next check may have begun by then.
        bool isDone = false;
        QTRY_VERIFY_WITH_TIMEOUT((isDone = isDone || IsUpToDate()), Longest);
    }
    bool IsUpToDate() const
    {
        QTest::qWait(20);
        return View().isVisible() && fixture.window->ProjectProblems().IsUpToDate();
    }
    QTreeView& View() const { return *fixture.Child<QTreeView>("viewProblems"); }
    /// "Sentence | thing" of each row.
    QStringList Rows() const
    {
        Wait();
        QCoreApplication::processEvents();
        QStringList rows;
        const QAbstractItemModel& model = *View().model();
        for (int row = 0; row < model.rowCount(); ++row) {
            rows.append(model.index(row, 1).data().toString() + QLatin1String(" | ") +
                        model.index(row, 2).data().toString());
        }
        return rows;
    }
    int RowOf(const QString& part) const
    {
        const QStringList rows = Rows();
        for (int row = 0; row < rows.size(); ++row) {
            if (rows[row].contains(part)) {
                return row;
            }
        }
        return -1;
    }
    QPoint Click(int row) const
    {
        View().scrollTo(View().model()->index(row, 1));
        const QPoint at = View().visualRect(View().model()->index(row, 1)).center();
        QTest::mouseClick(View().viewport(), Qt::LeftButton, {}, at);
        return at;
    }
    void DoubleClick(int row) const
    {
        const QPoint at = Click(row);
        QTest::mouseDClick(View().viewport(), Qt::LeftButton, {}, at);
    }
    void Press(const char* button) const
    {
        QTest::mouseClick(fixture.Child<QPushButton>(button), Qt::LeftButton);
    }
    QString Badge() const { return fixture.Child<QLabel>("lblProblems")->text(); }
    Zone& TheZone() const
    {
        return **fixture.window->GetDocument()
                     .Types()
                     .Types()
                     .first()
                     ->Territories()
                     .first()
                     ->Zones()
                     .begin();
    }

    WindowFixture fixture;
    QString path;
};

// The rows of its findings, errors first.
inline const QString Minimum =
    QStringLiteral("The static minimum 9 is above the maximum 2. | zone 1 of "
                   "territory 'North' of type 'Deer'");
inline const QString Radius =
    QStringLiteral("Its radius of 40 m is outside 50 to 32768 m. | zone 1 of "
                   "territory 'North' of type 'Deer'");
inline const QString Hidden = QStringLiteral("It is hidden, and exported all the same. | territory "
                                             "'North' of type 'Deer'");
