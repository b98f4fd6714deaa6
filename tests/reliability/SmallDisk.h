#pragma once

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/mount.h>

namespace test {

/// A disk of its own over "/tmp/" while this object lives, in the program's own mount namespace.
class SmallDisk
{
  public:
    explicit SmallDisk(const std::string& options)
    {
        if (!std::getenv("OWN_TMP")) {
            ADD_FAILURE() << "run with tests/support/own-tmp.sh";
            return;
        }
        m_mounted = ::mount("none", "/tmp", "tmpfs", 0, options.c_str()) == 0;
        EXPECT_TRUE(m_mounted) << std::strerror(errno);
    }

    ~SmallDisk()
    {
        if (m_mounted) {
            EXPECT_EQ(::umount2("/tmp", 0), 0) << std::strerror(errno);
        }
    }

    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return m_mounted; }

    void setRoom(const std::string& options)
    {
        EXPECT_EQ(::mount(nullptr, "/tmp", nullptr, MS_REMOUNT, options.c_str()), 0) << std::strerror(errno);
    }

    void setReadOnly(bool on)
    {
        const unsigned long flags = on ? MS_REMOUNT | MS_RDONLY : MS_REMOUNT;
        EXPECT_EQ(::mount(nullptr, "/tmp", nullptr, flags, nullptr), 0) << std::strerror(errno);
    }

  private:
    bool m_mounted = false;
};

} // namespace test
