#pragma once

namespace zv {

/// A set of 32 bits.
class Flag {
public:
    Flag() = default;
    Flag(unsigned int value) : mValue(value) {}

    unsigned int value() const { return mValue; }
    void setValue(unsigned int value) { mValue = value; }

    void setOn(unsigned int mask) { mValue |= mask; }
    void setOff(unsigned int mask) { mValue &= ~mask; }
    void setFlag(unsigned int mask, bool on) { on ? setOn(mask) : setOff(mask); }

    /// True when any bit of the mask is set.
    bool isOn(unsigned int mask) const { return (mValue & mask) != 0; }
    bool getFlag(unsigned int mask) const { return isOn(mask); }
    /// True when no bit of the mask is set.
    bool isOff(unsigned int mask) const { return !isOn(mask); }

    /// Switches the mask as a whole: clears all its bits when any is set, else sets all. Not a bitwise
    /// exclusive-or.
    void toggle(unsigned int mask) { setFlag(mask, isOff(mask)); }

private:
    unsigned int mValue = 0;
};

}  // namespace zv
