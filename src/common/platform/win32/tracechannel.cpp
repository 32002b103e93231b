#include "common/platform/tracechannel.h"

#include "common/platform/win32/windows.h"

#include <atomic>
#include <deque>
#include <limits>
#include <memory>
#include <new>
#include <vector>

// A message is one WM_COPYDATA to the window of the viewer's class.

namespace ZUNO::Common::Platform {

const std::uint32_t longestTraceText = std::numeric_limits<std::uint32_t>::max() - 1;

namespace {

/// How long a host waits for a viewer to take a message, in milliseconds; and how long it leaves a
/// viewer alone that did not.
constexpr UINT viewerPatience = 200;
constexpr DWORD viewerRest = 10'000;

// reports come from any thread
std::atomic<HWND> gHungViewer = nullptr;
std::atomic<DWORD> gHungSince = 0;

} // namespace

bool sendTraceMessage(std::uint32_t code, const void* payload, std::uint32_t length) noexcept {
    const HWND viewer = FindWindowA(traceViewerName, nullptr);
    if (viewer == nullptr || (viewer == gHungViewer && GetTickCount() - gHungSince < viewerRest))
        return false;
    COPYDATASTRUCT message{code, length, const_cast<void*>(payload)};
    const bool isTaken =
        SendMessageTimeoutA(viewer, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&message),
                            SMTO_NORMAL | SMTO_ABORTIFHUNG, viewerPatience, nullptr) != 0;
    gHungSince = GetTickCount();
    gHungViewer = isTaken ? nullptr : viewer;
    return isTaken;
}

struct TraceReceiver::State {
    struct Message {
        std::uint32_t mCode;
        std::vector<std::byte> mPayload;
    };

    ~State() {
        if (mWindow != nullptr)
            DestroyWindow(mWindow);
        UnregisterClassA(traceViewerName, GetModuleHandleA(nullptr));
    }

    static LRESULT CALLBACK handle(HWND window, UINT kind, WPARAM first, LPARAM second) noexcept;
    void keep(const COPYDATASTRUCT& message) {
        const auto* const payload = static_cast<const std::byte*>(message.lpData);
        mWaiting.push_back({static_cast<std::uint32_t>(message.dwData),
                            std::vector<std::byte>(payload, payload + message.cbData)});
    }

    HWND mWindow = nullptr;
    std::deque<Message> mWaiting;
    Message mCurrent{};
};

LRESULT CALLBACK TraceReceiver::State::handle(HWND window, UINT kind, WPARAM first,
                                              LPARAM second) noexcept {
    auto* const state = reinterpret_cast<State*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (kind != WM_COPYDATA || state == nullptr)
        return DefWindowProcA(window, kind, first, second);
    try {
        state->keep(*reinterpret_cast<const COPYDATASTRUCT*>(second));
    } catch (const std::bad_alloc&) {
        return FALSE; // the message is dropped
    }
    return TRUE;
}

TraceReceiver::TraceReceiver() noexcept : mState(nullptr) {}

TraceReceiver::~TraceReceiver() {
    delete mState;
}

const char* TraceReceiver::open() noexcept {
    if (mState != nullptr)
        return "the channel is open already";
    if (FindWindowA(traceViewerName, nullptr) != nullptr)
        return "another trace viewer runs already";
    std::unique_ptr<State> state(new (std::nothrow) State);
    if (state == nullptr)
        return "there is no memory";
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = State::handle;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = traceViewerName;
    if (RegisterClassA(&windowClass) == 0)
        return "the window class can't be registered";
    // never shown; a message-only window would not be found by its class
    state->mWindow = CreateWindowExA(0, traceViewerName, traceViewerName, WS_OVERLAPPED, 0, 0, 0, 0,
                                     nullptr, nullptr, windowClass.hInstance, nullptr);
    if (state->mWindow == nullptr)
        return "the window can't be made; is there a desktop?";
    SetWindowLongPtrA(state->mWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(state.get()));
    mState = state.release();
    return nullptr;
}

bool TraceReceiver::receive(TraceMessage& message, int milliseconds) noexcept {
    if (mState == nullptr)
        return false;
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
    for (;;) {
        MSG event;
        while (PeekMessageA(&event, nullptr, 0, 0, PM_REMOVE) != 0) // lets `handle` run, too
            DispatchMessageA(&event);
        if (!mState->mWaiting.empty())
            break;
        const ULONGLONG now = GetTickCount64();
        if (now >= end)
            return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
    }
    mState->mCurrent = std::move(mState->mWaiting.front());
    mState->mWaiting.pop_front();
    const State::Message& current = mState->mCurrent;
    message = {current.mCode, current.mPayload.data(),
               static_cast<std::uint32_t>(current.mPayload.size())};
    return true;
}

} // namespace ZUNO::Common::Platform
