// The example's window over a pcscd of its own with a virtual reader, used as a person uses it. PICTURE in
// the environment names the file for a picture of the window.

#include "CardService.h"
#include "ShownWindow.h"
#include "SimulatedCard.h"
#include "Ticks.h"

#include <Legend.h>

#include <QDir>
#include <QFileInfo>

#include <optional>
#include <set>
#include <utility>

namespace {

constexpr int patienceMs = 20000;

const QString noCard = QStringLiteral("There is no card in the reader. Put one in.");
const QString cardIn = QStringLiteral("A card is in the reader.");
const QString takeOut = QStringLiteral("Take the card out. It can be put in again, or another one.");
const QString complete = QStringLiteral("The download is complete.");
const QString pulled =
    QStringLiteral("The card was pulled out before all was read. Put it in again and start once more.");

/// A driver card; with @p bitRate one that can be met while it is read.
QStringList driverCard(int bitRate, int seed = 1)
{
    return {"--kind",        "driver-g2v2",
            "--surname",     "Mustermann",
            "--first-names", "Jana",
            "--nation",      "0D",
            "--days",        "60",
            "--bit-rate",    QString::number(bitRate),
            "--seed",        QString::number(seed)};
}

constexpr int quick = 10000000;
constexpr int slow = 2000000;

int downloads()
{
    return QDir("/tmp").entryList({"C_*.DDD"}).size();
}

} // namespace

class WindowTest : public QObject
{
    Q_OBJECT

  private Q_SLOTS:
    void downloadsADriverCard();
    void saysThatACardWasPulled();
    void saysThatACardRefuses();
    void listsWhatOtherCardsHold_data();
    void listsWhatOtherCardsHold();
    void closesWhenTheCardHasBeenRead();
    void canBeDestroyedWhileACardIsRead();
    void outlivesServiceAndReader();
};

void WindowTest::downloadsADriverCard()
{
    ShownWindow shown;
    QTRY_COMPARE(shown.state(), noCard);
    QVERIFY(!shown.button().isEnabled());

    SimulatedCard card(driverCard(slow));
    QVERIFY(card.isIn());
    QTRY_COMPARE(shown.state(), cardIn);
    QVERIFY(shown.button().isEnabled());
    QVERIFY(shown.button().focusPolicy() & Qt::TabFocus);

    std::set<int> percents;
    connect(
        &shown.bar(), &QProgressBar::valueChanged, [&percents](int percent) { percents.insert(percent); });
    const Ticks ticks;
    shown.start();
    QVERIFY(!shown.button().isEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(shown.message(), complete, patienceMs);
    QVERIFY(percents.size() > 20);
    QCOMPARE(*percents.rbegin(), 100);
    QVERIFY(ticks.count() > 20);
    QVERIFY2(ticks.longestGapMs() < 300, qPrintable(QString::number(ticks.longestGapMs())));

    QCOMPARE(shown.text("typeLabel"), QString("Driver card, second generation, version 2.2"));
    QCOMPARE(shown.text("holderLabel"), QString("Jana, Mustermann"));
    QVERIFY(QFileInfo(shown.text("fileLabel")).size() == 123406);
    QCOMPARE(shown.table("daysTable").rowCount(), 60);
    QCOMPARE(shown.cell("daysTable", 0, 0), QString("Tue 2024-03-05"));
    QCOMPARE(shown.cell("daysTable", 0, shown.columnOf("daysTable", "Driving")), QString("4:31"));
    QCOMPARE(shown.cell("daysTable", 0, shown.columnOf("daysTable", "Rest")), QString("8:27"));
    QCOMPARE(shown.table("vehiclesTable").rowCount(), 47);
    QCOMPARE(shown.cell("vehiclesTable", 0, 0), QString("2024-03-05 07:38"));
    QCOMPARE(shown.table("eventsTable").rowCount(), 13);
    QCOMPARE(shown.cell("eventsTable", 0, 2), QString("Vehicle motion conflict"));
    QCOMPARE(shown.table("faultsTable").rowCount(), 5);

    QCOMPARE(shown.state(), takeOut);
    QVERIFY(!shown.button().isEnabled());
    QVERIFY(shown.window.findChild<Legend*>()->minimumSizeHint().width() < shown.window.minimumWidth());
    if (qEnvironmentVariableIsSet("PICTURE"))
        QVERIFY(shown.window.grab().save(qEnvironmentVariable("PICTURE")));
    card.pull();
    QTRY_COMPARE(shown.state(), noCard);
}

void WindowTest::saysThatACardWasPulled()
{
    ShownWindow shown;
    QTRY_COMPARE(shown.state(), noCard);
    {
        SimulatedCard card(driverCard(slow));
        QTRY_VERIFY(shown.button().isEnabled());
        shown.start();
        QTRY_VERIFY(shown.bar().value() > 30);
        card.pull();
        QTRY_COMPARE(shown.message(), pulled);
        QTRY_COMPARE(shown.state(), noCard);
        QCOMPARE(shown.text("fileLabel"), QString());
        QCOMPARE(shown.text("detailsLabel"), QString());
        QTest::mouseClick(&shown.widget<QAbstractButton>("moreButton"), Qt::LeftButton);
        QVERIFY(shown.text("detailsLabel").contains("Failed reading card data"));
    }
    const SimulatedCard card(driverCard(quick));
    QTRY_VERIFY(shown.button().isEnabled());
    QTest::keyClick(&shown.button(), Qt::Key_Space);
    QTRY_COMPARE_WITH_TIMEOUT(shown.message(), complete, patienceMs);
    QCOMPARE(shown.table("daysTable").rowCount(), 60);
    QCOMPARE(shown.text("detailsLabel"), QString());
}

void WindowTest::saysThatACardRefuses()
{
    ShownWindow shown;
    QTRY_COMPARE(shown.state(), noCard);
    const SimulatedCard card({"--kind", "driver-g1", "--fail-at", "40:6400"});
    QTRY_VERIFY(shown.button().isEnabled());
    shown.start();
    QTRY_COMPARE(
        shown.message(),
        QString("The card could not be read to its end. Take it out, put it in again and start once more."));
    QCOMPARE(shown.state(), takeOut);
    QVERIFY(!shown.button().isEnabled());
    QTest::mouseClick(&shown.widget<QAbstractButton>("moreButton"), Qt::LeftButton);
    QVERIFY(shown.text("detailsLabel").contains("[6400]"));
}

void WindowTest::listsWhatOtherCardsHold_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("type");
    QTest::newRow("workshop-g2v2") << "calibrationsTable" << 40
                                   << "Workshop card, second generation, version 2.2";
    QTest::newRow("company-g2") << "activitiesTable" << 40 << "Company card, second generation";
    QTest::newRow("control-g1") << QString() << 0 << "Control card, first generation";
}

void WindowTest::listsWhatOtherCardsHold()
{
    QFETCH(QString, table);
    QFETCH(int, rows);
    ShownWindow shown;
    QTRY_COMPARE(shown.state(), noCard);
    const SimulatedCard card({"--kind", QTest::currentDataTag()});
    QTRY_VERIFY(shown.button().isEnabled());
    shown.start();
    QTRY_COMPARE_WITH_TIMEOUT(shown.message(), complete, patienceMs);
    QTEST(shown.text("typeLabel"), "type");
    if (table.isEmpty())
        QCOMPARE(
            shown.text("sentenceLabel"),
            QString("Cards of this kind are recognised, but not read: the file is empty."));
    else
        QCOMPARE(shown.table(qPrintable(table)).rowCount(), rows);
}

void WindowTest::closesWhenTheCardHasBeenRead()
{
    const int before = downloads();
    ShownWindow shown;
    QTRY_COMPARE(shown.state(), noCard);
    const SimulatedCard card(driverCard(slow, 2));
    QTRY_VERIFY(shown.button().isEnabled());
    shown.start();
    QTRY_VERIFY(shown.bar().value() > 30);
    QVERIFY(!shown.window.close());
    QCOMPARE(shown.state(), QString("The window closes when the card has been read."));
    QTRY_VERIFY_WITH_TIMEOUT(!shown.window.isVisible(), patienceMs);
    QCOMPARE(shown.bar().value(), 100);
    QCOMPARE(downloads(), before + 1);
}

void WindowTest::canBeDestroyedWhileACardIsRead()
{
    const int before = downloads();
    std::optional<ShownWindow> shown(std::in_place);
    QTRY_COMPARE(shown->state(), noCard);
    const SimulatedCard card(driverCard(slow, 3));
    QTRY_VERIFY(shown->button().isEnabled());
    shown->start();
    QTRY_VERIFY(shown->bar().value() > 30);
    shown.reset();
    QCOMPARE(downloads(), before + 1);
}

void WindowTest::outlivesServiceAndReader()
{
    ShownWindow shown;
    QTRY_COMPARE(shown.state(), noCard);
    QVERIFY(CardService::stop());
    QTRY_COMPARE(
        shown.state(), QString("The card service of this machine does not answer. Is pcscd running?"));
    QVERIFY(CardService::start("/run/no-readers"));
    QTRY_COMPARE(shown.state(), QString("There is no card reader. Plug one in."));
    QVERIFY(CardService::stop());
    QVERIFY(CardService::start("/run/readers"));
    QTRY_COMPARE(shown.state(), noCard);
    const SimulatedCard card(driverCard(quick));
    QTRY_VERIFY(shown.button().isEnabled());
    shown.start();
    QTRY_COMPARE_WITH_TIMEOUT(shown.message(), complete, patienceMs);
}

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
