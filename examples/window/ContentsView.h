#pragma once

#include "CardContents.h"

#include <QStackedWidget>

class QLabel;
class QTabWidget;

/// What is on a card: a page for its days and for each of its lists, or a sentence.
class ContentsView : public QStackedWidget
{
    Q_OBJECT

  public:
    explicit ContentsView(QWidget* parent = nullptr);

    void showSentence(const QString& sentence);
    void showContents(const CardContents& contents);

  private:
    QWidget* makeDays(const std::vector<Day>& days);
    QWidget* makeTable(const TextTable& content);

    QLabel* m_sentence;
    QTabWidget* m_pages;
};
