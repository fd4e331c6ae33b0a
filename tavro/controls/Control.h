#pragma once

#include "tavro/controls/ControlPtr.h"
#include "tavro/controls/Host.h"
#include "tavro/controls/Mouse.h"
#include "tavro/graphics/Region.h"
#include "tavro/runtime/Component.h"
#include "tavro/runtime/Events.h"

#include <span>
#include <vector>

namespace Vz {

class TVZGPCanvas;

/// A component with a place on a surface: bounds, a parent and children, visible, enabled, painted and
/// clicked.
///
/// Parent and owner are two things: the owner destroys a component, the parent shows it. Either may go first;
/// a control without a parent is a root, which a host may show. Lengths are whole control pixels, of which
/// the host makes device pixels by its scale. Everything runs on one thread, the user interface's. A handler
/// must not destroy the control that called it.
class TControl : public TComponent {
public:
    /// The largest width and height, and the farthest place; setters hold values to it.
    static constexpr int MaxExtent = 10'000'000;

    using TComponent::TComponent;
    ~TControl() override;

    // Bounds: whole pixels in the parent. Each change asks for a repaint of the old and the new place.

    /// -MaxExtent..MaxExtent, clamped. Default 0.
    int GetLeft() const { return FLeft; }
    void SetLeft(int value) { SetBounds(value, FTop, FWidth, FHeight); }
    int GetTop() const { return FTop; }
    void SetTop(int value) { SetBounds(FLeft, value, FWidth, FHeight); }
    /// 0..MaxExtent, clamped. The default is what the class gives itself while it is made.
    int GetWidth() const { return FWidth; }
    void SetWidth(int value) { SetBounds(FLeft, FTop, value, FHeight); }
    int GetHeight() const { return FHeight; }
    void SetHeight(int value) { SetBounds(FLeft, FTop, FWidth, value); }
    bool IsWidthStored() const { return FWidth != FDefaultWidth; }
    bool IsHeightStored() const { return FHeight != FDefaultHeight; }
    /// All four at once. Where the size changes Resize follows, and a root tells its host.
    void SetBounds(int left, int top, int width, int height);
    TRect GetBounds() const { return {FLeft, FTop, FLeft + FWidth, FTop + FHeight}; }
    /// (0, 0, width, height).
    TRect GetClientRect() const { return {0, 0, FWidth, FHeight}; }

    // Family.

    /// Null for a root.
    TControl* GetParent() const { return FParent; }
    /// Moves the control to the top of another parent's children; null takes it out. Raises EInvalidOperation
    /// for itself and for a control inside of it.
    void SetParent(TControl* parent);
    /// The children, the lowest first. Each is painted after those before it and gets the mouse before them.
    const std::vector<TControl*>& GetControls() const { return FControls; }
    void BringToFront();
    void SendToBack();
    /// The topmost of this control, its children and theirs; where no child takes the mouse at the point,
    /// this one. Only visible and enabled ones do. Null outside of the control.
    TControl* ControlAt(int x, int y);
    /// Who shows this root; null for nobody, the default. Looked at, not owned.
    IControlHost* GetHost() const { return FHost; }
    void SetHost(IControlHost* host);

    // State.

    /// Whether it and its children are painted and get the mouse. Default true.
    bool GetVisible() const { return FVisible; }
    void SetVisible(bool value);
    /// Whether it and its children get the mouse; a class may look different when it does not. Default true.
    bool GetEnabled() const { return FEnabled; }
    void SetEnabled(bool value);
    /// The pointer over the control. Default TCursor::Default.
    TCursor GetCursor() const { return FCursor; }
    void SetCursor(TCursor value);

    // Painting.

    /// Asks for a repaint of whatever of the control is out of date, by default all of it.
    void Invalidate();
    /// Asks for a repaint of a part, in the control's pixels; what lies outside of it, or is hidden, is left
    /// out.
    void InvalidateRect(const TRect& rect) { InvalidateRects({&rect, 1}); }
    void InvalidateRegion(const TRegion& region) { InvalidateRects(region.Rects()); }
    void InvalidateRects(std::span<const TRect> rects);
    /// Paints the control and its children, each within its bounds. A unit of the canvas is a control pixel,
    /// its origin the control's upper left corner. A hidden control paints nothing.
    void PaintTo(TVZGPCanvas& canvas);

    // Mouse, as a host reports it to a root: the control at the point gets it, and from a press until all
    // buttons are up the control that was pressed. x and y are pixels of this control.

    void HandleMouseDown(TMouseButton button, TShiftState shift, int x, int y);
    void HandleMouseMove(TShiftState shift, int x, int y);
    void HandleMouseUp(TMouseButton button, TShiftState shift, int x, int y);
    /// The control at the point gets the turn of the wheel, then its parents until one takes it. False where
    /// none does.
    bool HandleMouseWheel(TShiftState shift, double notches, int x, int y);
    /// The control that was pressed last gets the key, and before any press the root; then its parents until
    /// one takes it. False where none does.
    bool HandleKeyDown(TKey key, TShiftState shift);
    /// Whether a host should give it the keyboard when it is clicked or reached by the tab key. By default
    /// when OnKeyDown is set.
    virtual bool TakesKeys() const { return FOnKeyDown != nullptr; }

    // Events. All empty by default.

    const TMouseEvent& GetOnMouseDown() const { return FOnMouseDown; }
    void SetOnMouseDown(TMouseEvent event) { FOnMouseDown = std::move(event); }
    const TMouseMoveEvent& GetOnMouseMove() const { return FOnMouseMove; }
    void SetOnMouseMove(TMouseMoveEvent event) { FOnMouseMove = std::move(event); }
    const TMouseEvent& GetOnMouseUp() const { return FOnMouseUp; }
    void SetOnMouseUp(TMouseEvent event) { FOnMouseUp = std::move(event); }
    const TMouseWheelEvent& GetOnMouseWheel() const { return FOnMouseWheel; }
    void SetOnMouseWheel(TMouseWheelEvent event) { FOnMouseWheel = std::move(event); }
    const TKeyEvent& GetOnKeyDown() const { return FOnKeyDown; }
    void SetOnKeyDown(TKeyEvent event) { FOnKeyDown = std::move(event); }
    /// A left press and release inside of the control; comes before OnMouseUp.
    const TNotifyEvent& GetOnClick() const { return FOnClick; }
    void SetOnClick(TNotifyEvent event) { FOnClick = std::move(event); }
    /// After a change of width or height.
    const TNotifyEvent& GetOnResize() const { return FOnResize; }
    void SetOnResize(TNotifyEvent event) { FOnResize = std::move(event); }
    /// At each call of Invalidate, shown or not.
    const TNotifyEvent& GetOnInvalidate() const { return FOnInvalidate; }
    void SetOnInvalidate(TNotifyEvent event) { FOnInvalidate = std::move(event); }

    /// Name, Left, Top, Width, Height, Enabled, Visible.
    std::span<const TProp> GetCommonProps() const override;
    /// The events that every control of the class has, beside those of its property table: OnMouseDown,
    /// OnMouseMove, OnMouseUp, OnMouseWheel, OnKeyDown, OnClick, OnResize, and OnInvalidate, whose row is
    /// named "Invalidate".
    virtual std::span<const TProp> GetCommonEvents() const { return ControlEvents(); }
    /// Those of them that all controls have.
    static std::span<const TProp> ControlEvents();

    void SetParentComponent(TComponent& parent) override;
    /// The child controls that it owns, in their order, and then what else it owns.
    std::vector<TComponent*> GetChildComponents() const override;

    // Steps that a class overrides, calling its base's. They are public so that a test can take them singly.

    /// Raises OnResize.
    virtual void Resize();
    /// Runs after a change of Enabled. Does nothing.
    virtual void EnabledChangedMessage() {}
    virtual void MouseDown(TMouseButton button, TShiftState shift, int x, int y);
    virtual void MouseMove(TShiftState shift, int x, int y);
    virtual void MouseUp(TMouseButton button, TShiftState shift, int x, int y);
    virtual void Click();
    /// True when the control took it; else its parent is asked. Raises the event.
    virtual bool MouseWheel(TShiftState shift, double notches, int x, int y);
    virtual bool KeyDown(TKey key, TShiftState shift);

protected:
    void AfterConstruction() override;
    /// Paints the control itself, below its children. Nothing by default.
    virtual void Paint(TVZGPCanvas& canvas) {}
    /// The work of Invalidate: all of the control.
    virtual void RequestRepaint() { InvalidateRect(GetClientRect()); }

private:
    friend class TControlPtr;

    TControl& GetRoot();
    bool TakesMouse() const { return FVisible && FEnabled; }
    bool IsShown() const;
    bool IsInside(const TControl& other) const;
    TRect ToRoot(const TRect& rect) const;
    void MoveInFamily(bool toTop);
    void LeaveParent();
    TControl* MouseTarget(int x, int y);
    bool ToTarget(const TControl& target, int& x, int& y) const;
    TShiftState WithHeld(TShiftState shift) const;
    void PointAt(TControl* control);
    void ShowCursor();

    int FLeft = 0;
    int FTop = 0;
    int FWidth = 0;
    int FHeight = 0;
    int FDefaultWidth = 0;
    int FDefaultHeight = 0;
    bool FVisible = true;
    bool FEnabled = true;
    TCursor FCursor = TCursor::Default;
    TControl* FParent = nullptr;
    std::vector<TControl*> FControls;
    TControlPtr* FLookers = nullptr;

    // A root's.
    IControlHost* FHost = nullptr;
    TControlPtr FCaptured; ///< got a press; gets the mouse until all buttons are up
    TControlPtr FUnderMouse;
    TControlPtr FPressedLast; ///< gets the keys
    TSet<TMouseButton> FHeld;
    TCursor FShownCursor = TCursor::Default;

    TMouseEvent FOnMouseDown;
    TMouseMoveEvent FOnMouseMove;
    TMouseEvent FOnMouseUp;
    TMouseWheelEvent FOnMouseWheel;
    TKeyEvent FOnKeyDown;
    TNotifyEvent FOnClick;
    TNotifyEvent FOnResize;
    TNotifyEvent FOnInvalidate;
};

} // namespace Vz
