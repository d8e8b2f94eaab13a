#pragma once

namespace halvane {

// Qt reads a picture whose format it is not told by asking every image
// format plugin on the machine whether it can, which loads them all: a good
// part of the start-up, and all for the few pictures the style draws its
// controls with. The menu bar fetches the icon of its overflow button as it
// is made, though it only shows once the menu no longer fits: it is fetched
// when drawn. The group box frame is read here as the PNG it is, into the
// cache the style looks in first. Call once before the first window is made.
void leaveImagePluginsUnloaded();

} // namespace halvane
