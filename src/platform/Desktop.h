#pragma once

namespace halvane {

// Small desktop services: the single-copy check, the beep, the busy pointer.
class Desktop {
public:
    virtual ~Desktop() = default;
    virtual bool anotherCopyRunning() = 0;
    virtual void beep() = 0;
    virtual void setBusy(bool busy) = 0;
};

} // namespace halvane
