#pragma once

#include "CardStatus.h"

#include <scard/SCardReader.h>

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

/// Looks at the first reader and downloads the card in it. Lives in a thread of its own, for all of this
/// blocks; the reader object is made, used and destroyed in that thread.
class CardWorker : public QObject
{
    Q_OBJECT

  public:
    CardWorker();
    ~CardWorker() override;

  public Q_SLOTS:
    /// Looks at the reader from now on, in slices.
    void look();

    /// Downloads the card that is in. Is answered by changed() in any case.
    void download();

  Q_SIGNALS:
    void changed(const CardStatus& status);

  private:
    ReaderState takeReader();
    void releaseReader();
    void listenToReader();
    bool waitForChange(unsigned int milliseconds);
    aux::Error readCard();
    void noteProgress(int percent);
    void noteContents(scard::SCardGeneric& card);
    void setReader(ReaderState state);

    QTimer m_nextLook;
    std::unique_ptr<scard::SCardReader> m_reader;
    std::optional<bool> m_isCardIn; ///< of the first reader; empty when nothing was told
    bool m_isCardDone = false;      ///< the card inside went through a download
    bool m_wasPulled = false;       ///< during the download
    CardStatus m_status;
};
