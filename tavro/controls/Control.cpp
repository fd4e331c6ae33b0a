#include "tavro/controls/Control.h"

#include "tavro/controls/ClipScope.h"
#include "tavro/graphics/Canvas.h"
#include "tavro/runtime/ComponentProps.h"
#include "tavro/runtime/Exceptions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Vz {

namespace {

TRect Moved(const TRect& rect, int dx, int dy) {
    return {rect.Left + dx, rect.Top + dy, rect.Right + dx, rect.Bottom + dy};
}

} // namespace

TControl::~TControl() {
    FHost = nullptr;
    for (TControl* child : FControls)
        child->FParent = nullptr;
    FControls.clear();
    LeaveParent();
    while (FLookers)
        FLookers->Set(nullptr);
}

void TControl::AfterConstruction() {
    TComponent::AfterConstruction();
    FDefaultWidth = FWidth;
    FDefaultHeight = FHeight;
}

// Bounds.

void TControl::SetBounds(int left, int top, int width, int height) {
    const TRect old = GetBounds();
    FLeft = std::clamp(left, -MaxExtent, MaxExtent);
    FTop = std::clamp(top, -MaxExtent, MaxExtent);
    FWidth = std::clamp(width, 0, MaxExtent);
    FHeight = std::clamp(height, 0, MaxExtent);
    if (GetBounds() == old) return;
    const bool isResized = FWidth != old.Width() || FHeight != old.Height();
    if (FParent) {
        if (FVisible) FParent->InvalidateRect(old);
        InvalidateRect(GetClientRect());
    } else if (isResized) {
        InvalidateRect(GetClientRect());
        if (FHost) FHost->SizeWanted(FWidth, FHeight);
    }
    if (isResized) Resize();
}

void TControl::Resize() { Raise(FOnResize, *this); }

// Family.

bool TControl::IsInside(const TControl& other) const {
    const TControl* control = this;
    while (control && control != &other)
        control = control->FParent;
    return control != nullptr;
}

TControl& TControl::GetRoot() {
    TControl* control = this;
    while (control->FParent)
        control = control->FParent;
    return *control;
}

void TControl::LeaveParent() {
    if (!FParent) return;
    TControl& parent = *FParent;
    FParent = nullptr;
    std::erase(parent.FControls, this);
    if (FVisible) parent.InvalidateRect(GetBounds());
}

void TControl::SetParent(TControl* parent) {
    if (parent == FParent) return;
    if (parent && parent->IsInside(*this))
        throw EInvalidOperation("a control cannot be put inside of itself");
    LeaveParent();
    if (!parent) return;
    parent->FControls.push_back(this);
    FParent = parent;
    InvalidateRect(GetClientRect());
}

void TControl::MoveInFamily(bool toTop) {
    if (!FParent) return;
    std::vector<TControl*>& family = FParent->FControls;
    const auto self = std::find(family.begin(), family.end(), this);
    if (toTop)
        std::rotate(self, self + 1, family.end());
    else
        std::rotate(family.begin(), self, self + 1);
    InvalidateRect(GetClientRect());
}

void TControl::BringToFront() { MoveInFamily(true); }
void TControl::SendToBack() { MoveInFamily(false); }

TControl* TControl::ControlAt(int x, int y) {
    const bool isInside = x >= 0 && x < FWidth && y >= 0 && y < FHeight;
    if (!isInside || !TakesMouse()) return nullptr;
    for (auto child = FControls.rbegin(); child != FControls.rend(); ++child)
        if (TControl* found = (*child)->ControlAt(x - (*child)->FLeft, y - (*child)->FTop)) return found;
    return this;
}

void TControl::SetHost(IControlHost* host) {
    FHost = host;
    FShownCursor = TCursor::Default;
}

void TControl::SetParentComponent(TComponent& parent) {
    if (auto* control = dynamic_cast<TControl*>(&parent)) SetParent(control);
}

std::vector<TComponent*> TControl::GetChildComponents() const {
    std::vector<TComponent*> children;
    for (TControl* child : FControls)
        if (child->GetOwner() == this) children.push_back(child);
    for (TComponent* owned : TComponent::GetChildComponents()) {
        const auto* control = dynamic_cast<const TControl*>(owned);
        if (!control || control->FParent != this) children.push_back(owned);
    }
    return children;
}

// State.

void TControl::SetVisible(bool value) {
    if (value == FVisible) return;
    // Nothing is reported for a hidden control: so before it hides, or after it shows.
    if (!value) InvalidateRect(GetClientRect());
    FVisible = value;
    if (value) InvalidateRect(GetClientRect());
}

void TControl::SetEnabled(bool value) {
    if (value == FEnabled) return;
    FEnabled = value;
    EnabledChangedMessage();
}

void TControl::SetCursor(TCursor value) {
    if (value == FCursor) return;
    FCursor = value;
    GetRoot().ShowCursor();
}

// Painting.

void TControl::Invalidate() {
    Raise(FOnInvalidate, *this);
    RequestRepaint();
}

bool TControl::IsShown() const {
    const TControl* control = this;
    while (control && control->FVisible)
        control = control->FParent;
    return control == nullptr;
}

/// What of a part of this control can be seen in the root, in the root's pixels.
TRect TControl::ToRoot(const TRect& rect) const {
    TRect seen = Intersection(rect, GetClientRect());
    for (const TControl* control = this; control->FParent; control = control->FParent)
        seen = Intersection(Moved(seen, control->FLeft, control->FTop), control->FParent->GetClientRect());
    return seen;
}

void TControl::InvalidateRects(std::span<const TRect> rects) {
    IControlHost* const host = GetRoot().FHost;
    if (!host || !IsShown()) return;
    constexpr std::size_t AtOnce = 16;
    std::array<TRect, AtOnce> seen;
    while (!rects.empty()) {
        std::size_t count = 0;
        const auto part = rects.first(std::min(rects.size(), seen.size()));
        for (const TRect& rect : part)
            if (const TRect inRoot = ToRoot(rect); !inRoot.IsEmpty()) seen[count++] = inRoot;
        if (count > 0) host->RegionStale({seen.data(), count});
        rects = rects.subspan(part.size());
    }
}

void TControl::PaintTo(TVZGPCanvas& canvas) {
    if (!FVisible) return;
    const TRectD bounds{0, 0, double(FWidth), double(FHeight)};
    const TClipScope clip(canvas.GetDevice(), TouchedPixels(canvas.ToDevice(), bounds));
    if (clip.IsEmpty()) return;
    Paint(canvas);
    // By index: a handler may add and remove children.
    for (std::size_t i = 0; i < FControls.size(); ++i) {
        TControl& child = *FControls[i];
        TVZGPCanvas childCanvas(canvas);
        childCanvas.SetMatrix(CreateTranslateVZMatrix(float(child.FLeft), float(child.FTop)));
        child.PaintTo(childCanvas);
    }
}

// Mouse.

/// Who gets the mouse now: the one that was pressed, or, while no button is held, the one at the point.
TControl* TControl::MouseTarget(int x, int y) {
    if (FCaptured && !FCaptured->IsInside(*this)) FCaptured.Set(nullptr);
    return FHeld.IsEmpty() ? ControlAt(x, y) : FCaptured.Get();
}

/// Turns a point of this control into one of `target`, which is inside of this. False when it or a parent
/// does not take the mouse.
bool TControl::ToTarget(const TControl& target, int& x, int& y) const {
    std::int64_t left = 0;
    std::int64_t top = 0;
    for (const TControl* control = &target; control != this; control = control->FParent) {
        if (!control->TakesMouse()) return false;
        left += control->FLeft;
        top += control->FTop;
    }
    using TLimits = std::numeric_limits<int>;
    const auto held = [](std::int64_t v) {
        return static_cast<int>(std::clamp<std::int64_t>(v, TLimits::min(), TLimits::max()));
    };
    x = held(x - left);
    y = held(y - top);
    return TakesMouse();
}

TShiftState TControl::WithHeld(TShiftState shift) const {
    for (const TMouseButton button : {TMouseButton::Left, TMouseButton::Right, TMouseButton::Middle})
        if (FHeld.Contains(button)) shift.Include(HeldKey(button));
    return shift;
}

void TControl::HandleMouseDown(TMouseButton button, TShiftState shift, int x, int y) {
    if (FHeld.Contains(button)) FHeld = {}; // its release was lost
    if (FHeld.IsEmpty()) {
        FCaptured.Set(ControlAt(x, y));
        FPressedLast.Set(FCaptured.Get());
    }
    FHeld.Include(button);
    TControl* const target = MouseTarget(x, y);
    PointAt(target);
    if (target && ToTarget(*target, x, y)) target->MouseDown(button, WithHeld(shift), x, y);
}

void TControl::HandleMouseMove(TShiftState shift, int x, int y) {
    TControl* const target = MouseTarget(x, y);
    PointAt(target);
    if (target && ToTarget(*target, x, y)) target->MouseMove(WithHeld(shift), x, y);
}

void TControl::HandleMouseUp(TMouseButton button, TShiftState shift, int x, int y) {
    const TControlPtr target(MouseTarget(x, y));
    const bool wasPressed = FCaptured && FHeld.Contains(button);
    FHeld.Exclude(button);
    if (FHeld.IsEmpty()) {
        FCaptured.Set(nullptr);
        PointAt(ControlAt(x, y));
    }
    if (!target || !ToTarget(*target.Get(), x, y)) return;
    shift = WithHeld(shift);
    const bool isInside = x >= 0 && x < target->FWidth && y >= 0 && y < target->FHeight;
    if (wasPressed && isInside && button == TMouseButton::Left) target->Click();
    if (target) target->MouseUp(button, shift, x, y);
}

bool TControl::HandleMouseWheel(TShiftState shift, double notches, int x, int y) {
    if (!std::isfinite(notches) || notches == 0) return false;
    TControlPtr target(ControlAt(x, y));
    while (target) {
        int atX = x;
        int atY = y;
        if (!ToTarget(*target.Get(), atX, atY)) return false;
        if (target->MouseWheel(WithHeld(shift), notches, atX, atY)) return true;
        target.Set(target && target.Get() != this ? target->FParent : nullptr);
    }
    return false;
}

bool TControl::HandleKeyDown(TKey key, TShiftState shift) {
    const bool isOurs = FPressedLast && FPressedLast->IsInside(*this);
    TControlPtr target(isOurs ? FPressedLast.Get() : this);
    while (target) {
        if (target->TakesMouse() && target->KeyDown(key, WithHeld(shift))) return true;
        target.Set(target && target.Get() != this ? target->FParent : nullptr);
    }
    return false;
}

void TControl::PointAt(TControl* control) {
    FUnderMouse.Set(control);
    ShowCursor();
}

/// Tells the host of another pointer: that of the control under the mouse, or of the nearest parent that
/// wants one.
void TControl::ShowCursor() {
    const TControl* control = FUnderMouse.Get();
    while (control && control->FCursor == TCursor::Default)
        control = control->FParent;
    const TCursor wanted = control ? control->FCursor : TCursor::Default;
    if (wanted == FShownCursor) return;
    FShownCursor = wanted;
    if (FHost) FHost->CursorWanted(wanted);
}

void TControl::MouseDown(TMouseButton button, TShiftState shift, int x, int y) {
    Raise(FOnMouseDown, *this, button, shift, x, y);
}
void TControl::MouseMove(TShiftState shift, int x, int y) { Raise(FOnMouseMove, *this, shift, x, y); }
void TControl::MouseUp(TMouseButton button, TShiftState shift, int x, int y) {
    Raise(FOnMouseUp, *this, button, shift, x, y);
}
void TControl::Click() { Raise(FOnClick, *this); }
bool TControl::MouseWheel(TShiftState shift, double notches, int x, int y) {
    bool isHandled = false;
    Raise(FOnMouseWheel, *this, shift, notches, x, y, isHandled);
    return isHandled;
}
bool TControl::KeyDown(TKey key, TShiftState shift) {
    bool isHandled = false;
    Raise(FOnKeyDown, *this, key, shift, isHandled);
    return isHandled;
}

// Tables.

std::span<const TProp> TControl::GetCommonProps() const {
    static constexpr std::array Rows{
        NameProp,
        Prop<&TControl::GetLeft, &TControl::SetLeft>("Left", 0),
        Prop<&TControl::GetTop, &TControl::SetTop>("Top", 0),
        Prop<&TControl::GetWidth, &TControl::SetWidth, &TControl::IsWidthStored>("Width"),
        Prop<&TControl::GetHeight, &TControl::SetHeight, &TControl::IsHeightStored>("Height"),
        Prop<&TControl::GetEnabled, &TControl::SetEnabled>("Enabled", true),
        Prop<&TControl::GetVisible, &TControl::SetVisible>("Visible", true),
    };
    static_assert(NamesAreUnique(Rows));
    return Rows;
}

std::span<const TProp> TControl::ControlEvents() {
    static constexpr std::array Rows{
        EventProp<&TControl::SetOnMouseDown>("OnMouseDown"),
        EventProp<&TControl::SetOnMouseMove>("OnMouseMove"),
        EventProp<&TControl::SetOnMouseUp>("OnMouseUp"),
        EventProp<&TControl::SetOnMouseWheel>("OnMouseWheel"),
        EventProp<&TControl::SetOnKeyDown>("OnKeyDown"),
        EventProp<&TControl::SetOnClick>("OnClick"),
        EventProp<&TControl::SetOnResize>("OnResize"),
        EventProp<&TControl::SetOnInvalidate>("Invalidate"),
    };
    return Rows;
}

} // namespace Vz
