#pragma once

namespace test {

/// The pcscd beside this program: stopped and started again as an administrator does. Runs again, with its
/// virtual reader, when the object goes.
class CardService
{
  public:
    enum class Readers
    {
        Virtual,
        None,
    };

    CardService() = default;
    ~CardService();
    CardService(const CardService&) = delete;
    CardService& operator=(const CardService&) = delete;

    void stop();
    void start(Readers readers = Readers::Virtual);

  private:
    bool m_asFound = true;
};

} // namespace test
