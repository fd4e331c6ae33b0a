// Every registered instrument: making one more of a class, its first picture, a frame after its value was
// set, and what a thousand of them take. Times are medians of one run; E is the time that expat takes to read
// the artwork's text.

#include "Expat.h"
#include "Floor.h"
#include "Timing.h"

#include "tavro/controls/Form.h"
#include "tavro/controls/HeadlessHost.h"
#include "tavro/instruments/Instrument.h"
#include "tavro/package/Package.h"
#include "tavro/runtime/ClassRegistry.h"
#include "tavro/runtime/PropAccess.h"
#include "tavro/runtime/Resources.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstring>
#include <functional>

namespace {

using namespace Vz;
using Bench::Median;
using Bench::Timed;

/// A property that moves what the instrument shows, and where it moves to in equal steps.
double NumberOf(TComponent& component, std::string_view name, double otherwise) {
    const TProp* const row = FindProp(component, name);
    return row ? AsDouble(row->Get(component)) : otherwise;
}

/// Sets the instrument to one place after the other.
class TMover {
public:
    explicit TMover(TComponent& component)
        : FComponent(component) {
        FRow = FindMainProp(component);
        if (!FRow) return;
        const bool isTime = FRow->Type.Kind == TValueKind::DateTime; // days, around a date of these years
        FFrom = NumberOf(component, "Min", isTime ? 46000 : 0);
        FTo = NumberOf(component, "Max", isTime ? 46360 : FRow->Main == TQuantity::Heading ? 350 : 9000);
    }
    bool CanMove() const { return FRow != nullptr; }
    void Step() {
        FPart = FPart + 0.0137 > 1 ? 0 : FPart + 0.0137;
        const double place = FFrom + FPart * (FTo - FFrom);
        switch (FRow->Type.Kind) {
        case TValueKind::Single:
            return FRow->Set(FComponent, TValue(static_cast<float>(place)));
        case TValueKind::DateTime:
            return FRow->Set(FComponent, TValue(TDateTime(place)));
        case TValueKind::Boolean:
        case TValueKind::Set:
            return FRow->Set(FComponent, OtherState());
        case TValueKind::Integer:
            return FRow->Set(FComponent, TValue(static_cast<std::int64_t>(place)));
        default:
            return FRow->Set(FComponent, TValue(place));
        }
    }

private:
    /// On for off, and the first member in or out of a set.
    TValue OtherState() const {
        TValue value = FRow->Get(FComponent);
        if (bool* const on = std::get_if<bool>(&value)) *on = !*on;
        if (TSetValue* const set = std::get_if<TSetValue>(&value)) set->Mask ^= 1;
        return value;
    }

    TComponent& FComponent;
    const TProp* FRow = nullptr;
    double FFrom = 0;
    double FTo = 0;
    double FPart = 0;
};

TVZSVGCustomInstrument& InstrumentOf(TComponent& component) {
    return dynamic_cast<TVZSVGCustomInstrument&>(component);
}

double MeasureE(std::string_view text) {
    std::vector<double> times;
    for (int i = 0; i < 60; ++i)
        times.push_back(Timed([&] { Bench::ReadWithExpat(text); }));
    return Median(times);
}

std::string_view ArtworkOf(TComponent& component) {
    return GetResource(InstrumentOf(component).GetSVGResourceName());
}

/// One more of a class of which there are a hundred, and its first picture.
void Create(benchmark::State& state, const TClassEntry& entry) {
    std::vector<std::unique_ptr<TComponent>> others;
    for (int i = 0; i < 100; ++i)
        others.push_back(entry.Create());
    const double e = MeasureE(ArtworkOf(*others[0]));
    std::vector<double> make, paint[2];
    constexpr int sizes[] = {200, 400};
    for (auto _ : state) {
        std::unique_ptr<TComponent> one;
        make.push_back(Timed([&] { one = entry.Create(); }));
        for (int i = 0; i < 2; ++i) {
            const auto fresh = entry.Create();
            auto& control = InstrumentOf(*fresh);
            control.SetBounds(0, 0, sizes[i], sizes[i]);
            THeadlessHost host(control);
            paint[i].push_back(Timed([&] { host.Paint(); }));
        }
    }
    state.counters["E_us"] = e;
    state.counters["create_us"] = Median(make);
    state.counters["create_E"] = Median(make) / e;
    state.counters["paint200_E"] = Median(paint[0]) / e;
    state.counters["paint400_E"] = Median(paint[1]) / e;
}

/// The value is set, and the stale region or all is painted; in L of that region, and in copies of the frame.
void Frame(benchmark::State& state, const TClassEntry& entry) {
    const int size = static_cast<int>(state.range(0));
    const auto component = entry.Create();
    auto& control = InstrumentOf(*component);
    control.SetBounds(0, 0, size, size);
    TMover mover(control);
    if (!mover.CanMove()) return state.SkipWithError("nothing of it moves");
    THeadlessHost host(control);
    host.Paint();
    const Bench::TBitmap before(size), element(size), after(size), picture(size);
    std::vector<double> floor, copy, set, frame, whole;
    for (auto _ : state) {
        copy.push_back(Timed([&] {
            std::memcpy(picture.Pixels.Data, before.Pixels.Data,
                        before.Store.size() * sizeof before.Store[0]);
        }));
        benchmark::ClobberMemory();
        set.push_back(Timed([&] { mover.Step(); }));
        const std::vector<TRect> stale(host.GetStale().Rects().begin(), host.GetStale().Rects().end());
        frame.push_back(set.back() + Timed([&] { host.PaintStale(); }));
        floor.push_back(Timed([&] {
            for (const TRect& rect : stale)
                Bench::PaintFloor(picture, rect, {&before, &element, &after});
        }));
        benchmark::ClobberMemory();
        const double step = Timed([&] { mover.Step(); });
        whole.push_back(step + Timed([&] { host.Paint(); }));
    }
    state.counters["L_us"] = Median(floor);
    state.counters["set_us"] = Median(set);
    state.counters["stale_us"] = Median(frame);
    state.counters["stale_L"] = Median(frame) / Median(floor);
    state.counters["whole_us"] = Median(whole);
    state.counters["whole_copies"] = Median(whole) / Median(copy);
}

/// Bytes that each of many takes: as made, and once it was painted at 200.
void Memory(benchmark::State& state, const TClassEntry& entry) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const auto inUse = [] {
        const auto info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    const auto first = entry.Create(); // what all of a class share is there from here on
    const auto text = static_cast<double>(ArtworkOf(*first).size());
    THeadlessHost(InstrumentOf(*first)).Paint();
    for (auto _ : state) {
        std::vector<std::unique_ptr<TComponent>> all;
        all.reserve(count);
        const double before = inUse();
        for (std::size_t i = 0; i < count; ++i)
            all.push_back(entry.Create());
        const double made = (inUse() - before) / static_cast<double>(count);
        for (const auto& one : all)
            THeadlessHost(InstrumentOf(*one)).Paint();
        const double painted = (inUse() - before) / static_cast<double>(count);
        state.counters["made_kB"] = made / 1024;
        state.counters["made_texts"] = made / text;
        state.counters["painted_kB"] = painted / 1024;
    }
}

/// Many of a class on one form, all moving: microseconds that each of them takes.
void Many(benchmark::State& state, const TClassEntry& entry) {
    const int count = static_cast<int>(state.range(0));
    constexpr int size = 100;
    constexpr int columns = 40;
    const auto form = TVZForm::Create();
    form->SetBounds(0, 0, size * std::min(count, columns), size * ((count + columns - 1) / columns));
    std::vector<TMover> movers;
    for (int i = 0; i < count; ++i) {
        auto& control = InstrumentOf(entry.CreateOwned(*form));
        control.SetParent(form.get());
        control.SetBounds(size * (i % columns), size * (i / columns), size, size);
        movers.emplace_back(control);
        if (!movers.back().CanMove()) return state.SkipWithError("nothing of it moves");
    }
    THeadlessHost host(*form);
    host.Paint();
    std::vector<double> each;
    for (auto _ : state)
        each.push_back(Timed([&] {
                           for (TMover& mover : movers)
                               mover.Step();
                           host.PaintStale();
                       }) /
                       count);
    state.counters["each_us"] = Median(each);
}

void RegisterAll() {
    RegisterComponentClasses();
    using TBenchmark = void (*)(benchmark::State&, const TClassEntry&);
    const auto add = [](std::string_view what, const TClassEntry& entry, TBenchmark run) {
        const std::string name = std::string(what) + '/' + std::string(entry.Name);
        return benchmark::RegisterBenchmark(name.c_str(),
                                            [&entry, run](benchmark::State& state) { run(state, entry); })
            ->Unit(benchmark::kMicrosecond);
    };
    for (const TClassEntry& entry : GetClasses()) {
        const auto fresh = entry.Create();
        if (!dynamic_cast<const TVZSVGCustomInstrument*>(fresh.get())) continue;
        add("Create", entry, Create)->Iterations(60);
        add("Frame", entry, Frame)->Arg(200)->Arg(400)->Iterations(300);
        add("Memory", entry, Memory)->Arg(50)->Arg(1000)->Iterations(1);
        add("Many", entry, Many)->Arg(1)->Arg(1000)->Iterations(20);
    }
}

} // namespace

int main(int count, char** arguments) {
    RegisterAll();
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
