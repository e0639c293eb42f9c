#pragma once
#include <QObject>
#include <QRect>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QWidget;
class QWindow;

namespace orvex {

/// Handle of a host's window that is not Qt's; 0: none.
using NativeWindow = std::uintptr_t;

/// Owner for a dialog that the host calls for: the top-level window of `wanted`; without one, this thread's
/// active window, else its first visible and enabled one. 0 if there is none, and where windows that are not
/// Qt's cannot own a dialog (Linux).
NativeWindow FindNativeOwner(NativeWindow wanted);

/// A host's window as the owner of dialogs: disabled while one is open, and focused again afterwards. Dialogs
/// are identified by Qt's window ids. Where Qt's platform has no system windows (offscreen), dialogs get no
/// owner; everything else works.
class NativeOwner {
  public:
    /// `onGone` is called when the window is about to be destroyed, on the destroying thread; it must not
    /// call this object.
    NativeOwner(NativeWindow window, std::function<void()> onGone);
    /// Enables the window again.
    ~NativeOwner();
    NativeOwner(const NativeOwner&) = delete;
    NativeOwner& operator=(const NativeOwner&) = delete;

    /// Frame of the window in system pixels; nullopt if minimised.
    std::optional<QRect> Frame() const;
    /// Disables the window unless it is disabled already.
    void Disable();
    /// Undoes Disable. To be called before a dialog is hidden, so that the system activates this window.
    void Enable();
    /// Makes this window the owner of a dialog that is about to be shown: the dialog stays above it, is
    /// minimised with it and has no taskbar entry.
    void Own(NativeWindow dialog);
    /// Forgets a dialog that has been destroyed.
    void Disown(NativeWindow dialog);

  private:
    struct Watch;
    std::unique_ptr<Watch> watch_;
};

/// Makes a host's window the owner of the modal windows that are shown without a parent: they are centred on
/// it, owned by it, and it is disabled meanwhile.
class OwnerWindow : public QObject {
    Q_OBJECT

  public:
    /// `onGone` is called, on any thread, if the host destroys its window meanwhile.
    OwnerWindow(NativeWindow owner, std::function<void()> onGone);
    ~OwnerWindow() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void OnShow(QWidget& dialog);
    void OnHidden(QWindow* dialog);
    void Centre(QWidget& dialog) const;

    NativeOwner owner_;
    std::vector<QWindow*> shown_;
};

/// Converts a point from system pixels to Qt's window coordinates.
QPoint FromSystemPixels(QPoint point);

}  // namespace orvex
