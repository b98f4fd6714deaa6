#pragma once

#include "CardStatus.h"

#include <QThread>
#include <QWidget>

class ContentsView;
class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;

/// The window: shows what the worker tells, and asks it for a download.
class MainWindow : public QWidget
{
    Q_OBJECT

  public:
    MainWindow();
    ~MainWindow() override;

  Q_SIGNALS:
    void downloadWanted();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void startWorker();
    void layOut();
    void start();
    void showStatus(const CardStatus& status);
    void showReader();
    void showOutcome();
    void showContents(const std::shared_ptr<const CardContents>& before);
    bool isReading() const { return m_status.reader == ReaderState::Reading; }

    QLabel* m_state;
    QPushButton* m_start;
    QProgressBar* m_progress;
    QLabel* m_type;
    QLabel* m_holder;
    QLabel* m_file;
    QLabel* m_sign;
    QLabel* m_message;
    QToolButton* m_more;
    QLabel* m_details;
    ContentsView* m_contents;

    CardStatus m_status;
    bool m_closesWhenRead = false;
    QThread m_thread;
};
