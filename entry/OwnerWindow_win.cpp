#include "entry/OwnerWindow.h"

#include <windows.h>

#include <QAbstractEventDispatcher>
#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <algorithm>
#include <mutex>
#include <vector>

#include "entry/ThreadHook_win.h"

namespace orvex {
namespace {

HWND Handle(NativeWindow window) {
    return reinterpret_cast<HWND>(window);
}

BOOL CALLBACK TakeUsable(HWND window, LPARAM found) {
    if (IsWindowVisible(window) == FALSE || IsWindowEnabled(window) == FALSE) {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

HWND FirstUsableWindow() {
    HWND found = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), TakeUsable, reinterpret_cast<LPARAM>(&found));
    return found;
}

void SetOwner(HWND dialog, HWND owner) {
    SetWindowLongPtrW(dialog, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
}

DWORD ThreadOf(HWND window) {
    DWORD process = 0;
    const DWORD thread = GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId() ? thread : 0;
}

}  // namespace

NativeWindow FindNativeOwner(NativeWindow wanted) {
    HWND window = Handle(wanted);
    if (IsWindow(window) == FALSE) {
        window = GetActiveWindow();
    }
    if (window == nullptr) {
        window = FirstUsableWindow();
    }
    return reinterpret_cast<NativeWindow>(GetAncestor(window, GA_ROOT));
}

// Qt takes the owner away when it shows a window that has no owner of Qt's; a filter sees the message that
// comes after that and before the window appears.
struct NativeOwner::Watch : QAbstractNativeEventFilter {
    Watch(HWND owner, std::function<void()> gone)
        : window(owner), onGone(std::move(gone)), destruction(WH_CBT, OnWindowEvent, ThreadOf(owner)) {
        QAbstractEventDispatcher::instance()->installNativeEventFilter(this);
        const std::lock_guard guard(lock);
        watches.push_back(this);
    }
    ~Watch() override {
        QAbstractEventDispatcher::instance()->removeNativeEventFilter(this);
        const std::lock_guard guard(lock);
        std::erase(watches, this);
    }

    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto& shown = *static_cast<const MSG*>(message);
        if (shown.message == WM_SHOWWINDOW && shown.wParam != FALSE && Has(shown.hwnd)) {
            SetOwner(shown.hwnd, window);
        }
        return false;
    }

    bool Has(HWND dialog) const {
        const std::lock_guard guard(lock);
        return std::find(dialogs.begin(), dialogs.end(), dialog) != dialogs.end();
    }
    void Add(HWND dialog) {
        const std::lock_guard guard(lock);
        dialogs.push_back(dialog);
    }
    void Remove(HWND dialog) {
        const std::lock_guard guard(lock);
        std::erase(dialogs, dialog);
    }

    // Tells those who wait for a window, and returns the dialogs that it owns.
    static std::vector<HWND> TakeDialogsOf(HWND owner) {
        std::vector<HWND> owned;
        const std::lock_guard guard(lock);
        for (Watch* watch : watches) {
            if (watch->window == owner) {
                owned.insert(owned.end(), watch->dialogs.begin(), watch->dialogs.end());
                watch->dialogs.clear();
                watch->onGone();
            }
        }
        return owned;
    }

    // Windows destroys what a window owns together with it, and so behind Qt's back. The owners are changed
    // without the lock, which the dialogs' thread may be waiting for.
    static LRESULT CALLBACK OnWindowEvent(int code, WPARAM parameter, LPARAM more) {
        if (code == HCBT_DESTROYWND) {
            for (HWND dialog : TakeDialogsOf(reinterpret_cast<HWND>(parameter))) {
                SetOwner(dialog, nullptr);
            }
        }
        return CallNextHookEx(nullptr, code, parameter, more);
    }

    HWND window;
    std::function<void()> onGone;  ///< called with the lock held
    std::vector<HWND> dialogs;
    bool disabled = false;
    ThreadHook destruction;
    // The window may be another thread's.
    static std::mutex lock;  ///< of `watches` and of every watch's `dialogs`
    static std::vector<Watch*> watches;
};

std::mutex NativeOwner::Watch::lock;
std::vector<NativeOwner::Watch*> NativeOwner::Watch::watches;

NativeOwner::NativeOwner(NativeWindow window, std::function<void()> onGone)
    : watch_(std::make_unique<Watch>(Handle(window), std::move(onGone))) {}

NativeOwner::~NativeOwner() {
    Enable();
}

std::optional<QRect> NativeOwner::Frame() const {
    RECT frame{};
    if (IsIconic(watch_->window) != FALSE || GetWindowRect(watch_->window, &frame) == FALSE) {
        return std::nullopt;
    }
    return QRect(QPoint(frame.left, frame.top), QSize(frame.right - frame.left, frame.bottom - frame.top));
}

void NativeOwner::Disable() {
    if (!watch_->disabled && IsWindowEnabled(watch_->window) != FALSE) {
        watch_->disabled = true;
        EnableWindow(watch_->window, FALSE);
    }
}

void NativeOwner::Enable() {
    if (watch_->disabled) {
        watch_->disabled = false;
        EnableWindow(watch_->window, TRUE);
    }
    // Qt hides a window without activating another one.
    if (watch_->Has(GetActiveWindow())) {
        SetActiveWindow(watch_->window);
    }
}

void NativeOwner::Own(NativeWindow dialog) {
    if (QGuiApplication::platformName() == QLatin1String("windows") && !watch_->Has(Handle(dialog))) {
        watch_->Add(Handle(dialog));
    }
}

void NativeOwner::Disown(NativeWindow dialog) {
    watch_->Remove(Handle(dialog));
}

}  // namespace orvex
