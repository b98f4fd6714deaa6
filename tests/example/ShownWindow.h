#pragma once

#include <MainWindow.h>

#include <QAbstractItemView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QtTest>

/// The window and what a person finds in it.
struct ShownWindow
{
    MainWindow window;

    ShownWindow() { window.show(); }

    template <typename Widget>
    Widget& widget(const char* name)
    {
        auto* found = window.findChild<Widget*>(name);
        if (!found)
            qFatal("the window has no %s", name);
        return *found;
    }

    QPushButton& button() { return widget<QPushButton>("startButton"); }
    QProgressBar& bar() { return widget<QProgressBar>("progressBar"); }
    void start() { QTest::mouseClick(&button(), Qt::LeftButton); }

    /// The text of a label; empty when it is not seen.
    QString text(const char* label)
    {
        const auto& found = widget<QLabel>(label);
        return found.isVisible() ? found.text() : QString();
    }
    QString state() { return text("stateLabel"); }
    QString message() { return text("messageLabel"); }

    QAbstractItemModel& table(const char* name) { return *widget<QAbstractItemView>(name).model(); }
    QString cell(const char* name, int row, int column)
    {
        return table(name).index(row, column).data().toString();
    }
    int columnOf(const char* name, const QString& title)
    {
        int column = table(name).columnCount() - 1;
        while (column >= 0 && table(name).headerData(column, Qt::Horizontal).toString() != title)
            --column;
        return column;
    }
};
