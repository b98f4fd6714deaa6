#include "ContentsView.h"

#include "BandDelegate.h"
#include "DayModel.h"
#include "HourHeader.h"
#include "Legend.h"

#include <QLabel>
#include <QTableView>
#include <QTableWidget>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

void setUp(QTableView& table)
{
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.setTabKeyNavigation(false); // the Tab key leads on to the next widget
    table.setShowGrid(false);
    table.setWordWrap(false);
    table.setFrameShape(QFrame::NoFrame);
    table.verticalHeader()->hide();
    table.verticalHeader()->setDefaultSectionSize(table.fontMetrics().height() + 8);
}

} // namespace

ContentsView::ContentsView(QWidget* parent)
    : QStackedWidget(parent), m_sentence(new QLabel(this)), m_pages(new QTabWidget(this))
{
    m_sentence->setObjectName(QStringLiteral("sentenceLabel"));
    m_sentence->setAlignment(Qt::AlignCenter);
    m_sentence->setWordWrap(true);
    m_pages->setDocumentMode(true);
    addWidget(m_sentence);
    addWidget(m_pages);
}

void ContentsView::showSentence(const QString& sentence)
{
    m_sentence->setText(sentence);
    setCurrentWidget(m_sentence);
}

void ContentsView::showContents(const CardContents& contents)
{
    while (m_pages->count() > 0)
        delete m_pages->widget(0);
    if (contents.hasDays)
        m_pages->addTab(makeDays(contents.days), tr("Days (%1)").arg(contents.days.size()));
    for (const TextTable& table : contents.tables)
        m_pages->addTab(makeTable(table), QStringLiteral("%1 (%2)").arg(table.title).arg(table.rows.size()));
    if (contents.note.isEmpty())
        setCurrentWidget(m_pages);
    else
        showSentence(contents.note);
}

QWidget* ContentsView::makeDays(const std::vector<Day>& days)
{
    auto* page = new QWidget(m_pages);
    auto* table = new QTableView(page);
    table->setObjectName(QStringLiteral("daysTable"));
    setUp(*table);
    table->setModel(new DayModel(days, table));
    table->setItemDelegateForColumn(DayModel::Band, new BandDelegate(table));
    auto* header = new HourHeader(table);
    table->setHorizontalHeader(header);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(DayModel::Band, QHeaderView::Stretch);

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(new Legend(page));
    layout->addWidget(table);
    return page;
}

QWidget* ContentsView::makeTable(const TextTable& content)
{
    auto* table = new QTableWidget(static_cast<int>(content.rows.size()), content.columns.size(), m_pages);
    table->setObjectName(content.name + QStringLiteral("Table"));
    setUp(*table);
    table->setAlternatingRowColors(true);
    table->setHorizontalHeaderLabels(content.columns);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setHighlightSections(false);
    for (int row = 0; row < table->rowCount(); ++row) {
        const QStringList& texts = content.rows[static_cast<std::size_t>(row)];
        for (int column = 0; column < texts.size(); ++column)
            table->setItem(row, column, new QTableWidgetItem(texts[column]));
    }
    table->resizeColumnsToContents();
    constexpr int gap = 12;
    for (int column = 0; column < table->columnCount(); ++column)
        table->setColumnWidth(column, table->columnWidth(column) + gap);
    table->horizontalHeader()->setStretchLastSection(true);
    return table;
}
