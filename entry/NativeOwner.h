#pragma once
#include <QRect>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace orvex {

/// A window of the host's that is not Qt's, by its handle; 0: none.
using NativeWindow = std::uintptr_t;

/// The window that a dialog called for by the host belongs to: the top-level window of `wanted`; without one,
/// this thread's active window, else its first that the user can see and use. 0 when there is none, and where
/// windows that are not Qt's cannot own a dialog (Linux).
NativeWindow FindNativeOwner(NativeWindow wanted);

/// A host's window as the owner of dialogs: it takes no input while one is open, and gets the focus back. The
/// handles of dialogs are Qt's window ids; where Qt's platform has no windows of the system's (offscreen),
/// they cannot be given an owner, all else holds.
class NativeOwner {
  public:
    /// `onGone` is called when the window is about to be destroyed, on the thread that does that.
    NativeOwner(NativeWindow window, std::function<void()> onGone);
    /// Lets the window take input again.
    ~NativeOwner();
    NativeOwner(const NativeOwner&) = delete;
    NativeOwner& operator=(const NativeOwner&) = delete;

    /// The window's frame in pixels of the system; none when it is minimised.
    std::optional<QRect> Frame() const;
    /// Keeps the user from working in the window, unless something else did before. A second call is without
    /// effect.
    void Disable();
    /// Undoes Disable. To be called before a dialog is hidden: the system then activates this window.
    void Enable();
    /// Makes a dialog that is about to be shown owned: above the window, minimised together with it, without
    /// an entry of its own in the taskbar.
    void Own(NativeWindow dialog);
    /// Forgets a dialog that is hidden.
    void Disown(NativeWindow dialog);

  private:
    struct Watch;
    std::unique_ptr<Watch> watch_;
};

}  // namespace orvex
