#pragma once

namespace test {

/// The reader whose card the tests use, as pcscd names the virtual reader's first slot.
inline constexpr char virtualReaderName[] = "Simulated reader 00 00";

/// The second slot, which no program should use.
inline constexpr char secondVirtualReaderName[] = "Simulated reader 00 01";

/// TCP port on which the virtual reader waits for its card.
inline constexpr unsigned short virtualReaderPort = 0x9001;

/// Waits until pcscd sees a card in @p reader, or sees none; false after ten seconds.
/// A card that comes before pcscd has seen the last one leave is taken for that one.
bool waitForPresence(bool present, const char* reader = virtualReaderName);

} // namespace test
