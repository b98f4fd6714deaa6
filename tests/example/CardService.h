#pragma once

/// The pcscd beside this program, stopped and started as an administrator does.
namespace CardService {

/// False when it did not end.
bool stop();

/// @param config folder with the readers' configuration
/// @return false when it did not come up
bool start(const char* config);

} // namespace CardService
