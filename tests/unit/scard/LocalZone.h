#pragma once

#include <QByteArray>

#include <ctime>

namespace test {

/// The machine stands in this time zone as long as the object lives.
class LocalZone
{
  public:
    explicit LocalZone(const char* name) : m_before(qgetenv("TZ")), m_wasSet(qEnvironmentVariableIsSet("TZ"))
    {
        qputenv("TZ", QByteArray(":") + name);
        tzset();
    }

    ~LocalZone()
    {
        if (m_wasSet)
            qputenv("TZ", m_before);
        else
            qunsetenv("TZ");
        tzset();
    }

    LocalZone(const LocalZone&) = delete;
    LocalZone& operator=(const LocalZone&) = delete;

  private:
    QByteArray m_before;
    bool m_wasSet;
};

} // namespace test
