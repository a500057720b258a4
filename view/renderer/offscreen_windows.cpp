#include <windows.h>
// <windows.h> first: the other headers of the system need it, and the last one the types of OpenGL too.
#include <GL/glcorearb.h>
#include <GL/wglext.h>

#include <cstdint>
#include <type_traits>
#include <utility>

#include "view/renderer/offscreen.h"
#include "view/renderer/offscreen_parts.h"

namespace tarnwick::view {

namespace {

/// What is called of opengl32.dll, which some installations of Windows do not have: so nothing is linked to it.
class Wgl {
 public:
  Wgl() : m_library(LoadLibraryExW(L"opengl32.dll", nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS)) {
    if (m_library == nullptr) return;
    bool whole = true;
    const auto find = [&](auto& function, const char* name) {
      function = reinterpret_cast<std::decay_t<decltype(function)>>(OfLibrary(name));
      whole = whole && function != nullptr;
    };
    find(CreateContext, "wglCreateContext");
    find(DeleteContext, "wglDeleteContext");
    find(GetProcAddressOf, "wglGetProcAddress");
    find(MakeCurrent, "wglMakeCurrent");
    IsThere = whole;
  }

  /// The address of a function of the current context. What is as old as OpenGL 1.1 is the library's own, and drivers
  /// answer with small numbers in place of null.
  void* Address(const char* name) const {
    void* address = reinterpret_cast<void*>(GetProcAddressOf(name));
    const auto value = reinterpret_cast<intptr_t>(address);
    return value >= -1 && value <= 3 ? OfLibrary(name) : address;
  }

  bool IsThere = false;
  decltype(&wglCreateContext) CreateContext = nullptr;
  decltype(&wglDeleteContext) DeleteContext = nullptr;
  decltype(&wglGetProcAddress) GetProcAddressOf = nullptr;
  decltype(&wglMakeCurrent) MakeCurrent = nullptr;

 private:
  void* OfLibrary(const char* name) const { return reinterpret_cast<void*>(GetProcAddress(m_library, name)); }

  HMODULE m_library = nullptr;
};

const Wgl& TheWgl() {
  static const Wgl wgl;
  return wgl;
}

/// What a window that is never shown is drawn on by, with a pixel format for OpenGL. Null if it cannot be had.
HDC MakeHiddenWindow() {
  constexpr const wchar_t* ClassName = L"TarnwickOffscreen";
  static const ATOM registered = [] {
    WNDCLASSW window{};
    window.style = CS_OWNDC;
    window.lpfnWndProc = DefWindowProcW;
    window.hInstance = GetModuleHandleW(nullptr);
    window.lpszClassName = ClassName;
    return RegisterClassW(&window);
  }();
  if (registered == 0) return nullptr;
  // Nobody takes messages from its queue, so it must get none that are for all windows.
  HWND window = CreateWindowExW(0, ClassName, L"", WS_POPUP, 0, 0, 1, 1, HWND_MESSAGE, nullptr,
                                GetModuleHandleW(nullptr), nullptr);
  if (window == nullptr) return nullptr;
  HDC device = GetDC(window);
  PIXELFORMATDESCRIPTOR wanted{};
  wanted.nSize = sizeof(wanted);
  wanted.nVersion = 1;
  wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL;
  wanted.iPixelType = PFD_TYPE_RGBA;
  wanted.cColorBits = 32;
  const int format = ChoosePixelFormat(device, &wanted);
  if (format != 0 && SetPixelFormat(device, format, &wanted) != FALSE) return device;
  DestroyWindow(window);
  return nullptr;
}

/// The device that contexts are current with on this thread. A window goes with the thread that made it, so each has
/// its own; they are alike, and a context can be current with any of them.
HDC DeviceOfThread() {
  thread_local HDC device = MakeHiddenWindow();
  return device;
}

/// A context of OpenGL 3.3, current on this thread. Null, with `reason`, if the driver has none.
HGLRC MakeContext(HDC device, std::string& reason) {
  const Wgl& wgl = TheWgl();
  const char* why = "the graphics driver gives no OpenGL";
  // Only in a context of the old kind can one of the new be asked for.
  HGLRC old = wgl.CreateContext(device);
  HGLRC context = nullptr;
  if (old != nullptr && wgl.MakeCurrent(device, old) != FALSE) {
    why = "the graphics driver gives no OpenGL 3.3 (install the maker's driver of the graphics card)";
    const auto create = reinterpret_cast<PFNWGLCREATECONTEXTATTRIBSARBPROC>(wgl.Address("wglCreateContextAttribsARB"));
    constexpr int Wanted[] = {
        WGL_CONTEXT_MAJOR_VERSION_ARB,    3, WGL_CONTEXT_MINOR_VERSION_ARB, 3, WGL_CONTEXT_PROFILE_MASK_ARB,
        WGL_CONTEXT_CORE_PROFILE_BIT_ARB, 0};
    if (create != nullptr) context = create(device, nullptr, Wanted);
  }
  if (context != nullptr && wgl.MakeCurrent(device, context) == FALSE) {
    wgl.DeleteContext(context);
    context = nullptr;
  }
  if (context == nullptr) {
    wgl.MakeCurrent(nullptr, nullptr);
    reason = why;
  }
  if (old != nullptr) wgl.DeleteContext(old);
  return context;
}

}  // namespace

std::unique_ptr<Offscreen> Offscreen::Make(std::string& reason) {
  if (!TheWgl().IsThere) {
    reason = "this installation of Windows has no OpenGL (opengl32.dll)";
    return nullptr;
  }
  const HDC device = DeviceOfThread();
  if (device == nullptr) {
    reason = "no window for OpenGL can be made: nobody is logged on to a screen, or no graphics driver is installed";
    return nullptr;
  }
  auto parts = std::make_unique<Parts>();
  HGLRC context = MakeContext(device, reason);
  if (context == nullptr) return nullptr;
  parts->Context = context;
  parts->Gl = LoadGlFunctions([](const char* name) { return TheWgl().Address(name); }, reason);
  if (parts->Gl == nullptr) {
    TheWgl().MakeCurrent(nullptr, nullptr);
    TheWgl().DeleteContext(context);
    return nullptr;
  }
  return std::unique_ptr<Offscreen>(new Offscreen(std::move(parts)));
}

bool Offscreen::MakeCurrent() {
  const HDC device = DeviceOfThread();
  return device != nullptr && TheWgl().MakeCurrent(device, static_cast<HGLRC>(m_parts->Context)) != FALSE;
}

void Offscreen::Release() {
  TheWgl().MakeCurrent(nullptr, nullptr);
}

Offscreen::~Offscreen() {
  if (MakeCurrent()) m_parts->FreeFramebuffer();
  TheWgl().MakeCurrent(nullptr, nullptr);
  TheWgl().DeleteContext(static_cast<HGLRC>(m_parts->Context));
}

}  // namespace tarnwick::view
