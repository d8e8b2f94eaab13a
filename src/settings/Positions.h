#pragma once

// Positions of the entries of the main window's selectors and tabs, in the
// order LoadControls fills them; the store keeps these positions too.
namespace halvane::positions {

inline constexpr int ListenServer = 0;
inline constexpr int PrivateServer = 1;
inline constexpr int DedicatedServer = 2;

inline constexpr int NoBots = 0;
inline constexpr int UserDefinedBots = 1;
inline constexpr int AutomaticBots = 2;

inline constexpr int CaptureTheFlag = 3;

inline constexpr int AdvancedTab = 4;
inline constexpr int TabCount = 6;

} // namespace halvane::positions
