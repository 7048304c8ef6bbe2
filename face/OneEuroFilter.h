#pragma once

namespace zv {

/// Smooths a value that jitters: much while it rests, little while it moves (Casiez, Roussel, Vogel, 1 Euro
/// Filter, 2012). Speeds are of the value a second.
class OneEuroFilter {
public:
    struct Settings {
        float restCutoff;   ///< hertz, at rest
        float perSpeed;     ///< hertz more for each unit of speed
        float speedCutoff;  ///< hertz, for the speed itself
    };

    /// The next value smoothed; the first one as it is.
    /// @param dt seconds since the value before, more than 0
    float filter(float value, float dt, const Settings& settings) {
        if (!mStarted) {
            mStarted = true;
            mValue = mLast = value;
            mSpeed = 0.0F;
            return value;
        }
        mSpeed += weight(settings.speedCutoff, dt) * ((value - mLast) / dt - mSpeed);
        mLast = value;
        const float speed = mSpeed < 0.0F ? -mSpeed : mSpeed;
        mValue += weight(settings.restCutoff + settings.perSpeed * speed, dt) * (value - mValue);
        return mValue;
    }

    /// Adds to the value without taking that for motion.
    void shift(float by) {
        mValue += by;
        mLast += by;
    }
    void reset() { mStarted = false; }

private:
    static float weight(float cutoff, float dt) {
        constexpr float kTurn = 6.2831853F;
        return 1.0F - 1.0F / (1.0F + kTurn * cutoff * dt);
    }

    float mValue = 0.0F;
    float mLast = 0.0F;  ///< as it came
    float mSpeed = 0.0F;
    bool mStarted = false;
};

}  // namespace zv
