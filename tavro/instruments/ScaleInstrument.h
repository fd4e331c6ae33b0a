#pragma once

#include "tavro/instruments/Instrument.h"
#include "tavro/instruments/Scale.h"

namespace Vz {

/// Base of the instruments that show a value on a scale from Min to Max. Values have no unit of their own.
///
/// A class says in GetLowest and GetHighest how far the value may go beyond the scale, and shows in ShowScale
/// and ShowValue what changed.
class TVZCustomScaleInstrument : public TVZSVGCustomInstrument {
public:
    using TVZSVGCustomInstrument::TVZSVGCustomInstrument;

    // Of these only SetValue raises OnChange. Each setter does nothing at all, no repaint included, when the
    // value is the present one.

    /// Lower end of the scale, in scale units; any finite number, others are ignored. Default: the class's.
    /// One above Max moves Max to one above it; Value comes up to it. Equal ends are taken: what shows the
    /// value then stays where it is.
    float GetMin() const { return FScale.Min; }
    void SetMin(float value);
    bool IsMinStored() const { return FScale.Min != FDefaults.Min; }
    /// Upper end of the scale, in scale units; any finite number, others are ignored. Default: the class's.
    /// One below Min moves Min to one below it; Value comes down to it.
    float GetMax() const { return FScale.Max; }
    void SetMax(float value);
    bool IsMaxStored() const { return FScale.Max != FDefaults.Max; }
    /// What the instrument shows, in scale units, held in GetLowest()..GetHighest(); not-a-number is ignored.
    /// Default: the class's. A change raises OnChange; so does each value beyond the range, because it is not
    /// the one that is kept.
    float GetValue() const { return FScale.Value; }
    void SetValue(float value);
    /// True where Value is not what a stream's Min and Max give a fresh object.
    bool IsValueStored() const { return FScale.IsValueStored(FDefaults.Value); }

    /// The range of Value, in scale units; Min and Max, unless a class lets it go further.
    virtual float GetLowest() const { return FScale.Min; }
    virtual float GetHighest() const { return FScale.Max; }

protected:
    /// Sets the scale of a fresh object without any notice, and makes it the defaults for storing.
    void SetDefaultScale(const TScale& scale) { FScale = FDefaults = scale; }
    /// Makes the scale as it is the defaults for storing.
    void RefreshDefaults() { FDefaults = FScale; }
    /// Shows another Min or Max, and the value on it. Runs inside a document's update.
    virtual void ShowScale() = 0;
    /// What ShowScale edits; of the picture the caches are marked stale behind it. The base's: the picture.
    virtual TReach GetScaleReach() const;
    /// Shows another value, and invalidates.
    virtual void ShowValue() = 0;

    const TScale& GetScale() const { return FScale; }
    const TScale& GetDefaults() const { return FDefaults; }

private:
    void ScaleMoved();

    TScale FScale;
    TScale FDefaults;
};

} // namespace Vz
