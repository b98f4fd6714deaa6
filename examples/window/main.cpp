#include "MainWindow.h"

#include <QApplication>
#include <QLoggingCategory>

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("scard-window"));
    // What the library says while it reads is for its developers, and can name the card's holder.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    MainWindow window;
    window.show();
    return QApplication::exec();
}
