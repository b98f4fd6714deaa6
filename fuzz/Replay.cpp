// Gives a target the inputs of files and folders, without a search: fuzz_replay_TARGET PATH…
#include "Target.h"

#include <QByteArray>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

constexpr unsigned int longestSeconds = 30;

QByteArray current;

/// A target that hangs is a finding; so is one that dies.
void sayWhich(int signal)
{
    constexpr char text[] = "\nthe input was ";
    static_cast<void>(::write(STDERR_FILENO, text, sizeof text - 1));
    static_cast<void>(::write(STDERR_FILENO, current.constData(), std::strlen(current.constData())));
    static_cast<void>(::write(STDERR_FILENO, "\n", 1));
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

bool replay(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s cannot be read\n", qPrintable(path));
        return false;
    }
    const QByteArray input = file.readAll();
    current = QFile::encodeName(path);
    ::alarm(longestSeconds);
    LLVMFuzzerTestOneInput(
        reinterpret_cast<const std::uint8_t*>(input.constData()), static_cast<std::size_t>(input.size()));
    ::alarm(0);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    for (const int signal : {SIGALRM, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        std::signal(signal, sayWhich);
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QFile::decodeName(argv[i]);
        int found = 0;
        if (QFileInfo(path).isDir()) {
            for (QDirIterator file(path, QDir::Files); file.hasNext(); ++found) {
                if (!replay(file.next()))
                    return 1;
            }
        } else if (replay(path)) {
            ++found;
        }
        if (found == 0) {
            std::fprintf(stderr, "there is no input in %s\n", argv[i]);
            return 1;
        }
        inputs += found;
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
