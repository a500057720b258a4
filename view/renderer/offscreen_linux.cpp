#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <dlfcn.h>

#include <string_view>
#include <utility>

#include "view/renderer/offscreen.h"
#include "view/renderer/offscreen_parts.h"

namespace tarnwick::view {

namespace {

/// What is called of libEGL.
struct Egl {
  PFNEGLGETPROCADDRESSPROC GetProcAddress = nullptr;
  PFNEGLQUERYSTRINGPROC QueryString = nullptr;
  PFNEGLGETDISPLAYPROC GetDisplay = nullptr;
  PFNEGLINITIALIZEPROC Initialize = nullptr;
  PFNEGLBINDAPIPROC BindApi = nullptr;
  PFNEGLCHOOSECONFIGPROC ChooseConfig = nullptr;
  PFNEGLCREATECONTEXTPROC CreateContext = nullptr;
  PFNEGLDESTROYCONTEXTPROC DestroyContext = nullptr;
  PFNEGLMAKECURRENTPROC MakeCurrent = nullptr;
  PFNEGLRELEASETHREADPROC ReleaseThread = nullptr;
  PFNEGLGETPLATFORMDISPLAYEXTPROC GetPlatformDisplay = nullptr;
  PFNEGLQUERYDEVICESEXTPROC QueryDevices = nullptr;
};

bool HasWord(const char* list, std::string_view word) {
  const std::string_view text = list == nullptr ? "" : list;
  for (size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
    const size_t end = at + word.size();
    if ((at == 0 || text[at - 1] == ' ') && (end == text.size() || text[end] == ' ')) return true;
  }
  return false;
}

/// The display that all contexts of the process are made on. It stays: contexts of several threads come and go.
class EglDisplayOfProcess {
 public:
  EglDisplayOfProcess() {
    void* library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
      m_reason = "libEGL is not there (on Debian install libegl1 and libgl1-mesa-dri)";
      return;
    }
    bool whole = true;
    const auto find = [&](auto& function, const char* name) {
      function = reinterpret_cast<std::decay_t<decltype(function)>>(dlsym(library, name));
      whole = whole && function != nullptr;
    };
    find(m_egl.GetProcAddress, "eglGetProcAddress");
    find(m_egl.QueryString, "eglQueryString");
    find(m_egl.GetDisplay, "eglGetDisplay");
    find(m_egl.Initialize, "eglInitialize");
    find(m_egl.BindApi, "eglBindAPI");
    find(m_egl.ChooseConfig, "eglChooseConfig");
    find(m_egl.CreateContext, "eglCreateContext");
    find(m_egl.DestroyContext, "eglDestroyContext");
    find(m_egl.MakeCurrent, "eglMakeCurrent");
    find(m_egl.ReleaseThread, "eglReleaseThread");
    if (!whole) {
      m_reason = "libEGL lacks functions";
      return;
    }
    const auto extension = [&](auto& function, const char* name) {
      function = reinterpret_cast<std::decay_t<decltype(function)>>(m_egl.GetProcAddress(name));
    };
    extension(m_egl.GetPlatformDisplay, "eglGetPlatformDisplayEXT");
    extension(m_egl.QueryDevices, "eglQueryDevicesEXT");
    Choose();
  }

  const Egl& Functions() const { return m_egl; }
  /// EGL_NO_DISPLAY if there is none; Reason then tells why.
  EGLDisplay Display() const { return m_display; }
  const std::string& Reason() const { return m_reason; }

  /// A context without a surface, current on this thread. EGL_NO_CONTEXT if the display cannot give one.
  EGLContext MakeContext(EGLDisplay display) const {
    if (m_egl.BindApi(EGL_OPENGL_API) == EGL_FALSE) return EGL_NO_CONTEXT;
    const EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, 0, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (m_egl.ChooseConfig(display, wanted, &config, 1, &count) == EGL_FALSE || count == 0) return EGL_NO_CONTEXT;
    const EGLint attributes[] = {
        EGL_CONTEXT_MAJOR_VERSION,           3,       EGL_CONTEXT_MINOR_VERSION, 3, EGL_CONTEXT_OPENGL_PROFILE_MASK,
        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    const EGLContext context = m_egl.CreateContext(display, config, EGL_NO_CONTEXT, attributes);
    if (context == EGL_NO_CONTEXT) return EGL_NO_CONTEXT;
    if (m_egl.MakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_FALSE) {
      m_egl.DestroyContext(display, context);
      return EGL_NO_CONTEXT;
    }
    return context;
  }

  GlLoader Loader() const {
    return [this](const char* name) { return reinterpret_cast<void*>(m_egl.GetProcAddress(name)); };
  }

  bool MakeCurrent(EGLContext context) const {
    return m_egl.BindApi(EGL_OPENGL_API) == EGL_TRUE &&
           m_egl.MakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE;
  }

  void Release() const { MakeCurrent(EGL_NO_CONTEXT); }

  void Free(EGLDisplay display, EGLContext context) const {
    m_egl.MakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    m_egl.DestroyContext(display, context);
    m_egl.ReleaseThread();
  }

 private:
  void Choose() {
    const char* extensions = m_egl.QueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (m_egl.GetPlatformDisplay != nullptr && HasWord(extensions, "EGL_MESA_platform_surfaceless") &&
        Take(m_egl.GetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr))) {
      return;
    }
    if (m_egl.GetPlatformDisplay != nullptr && m_egl.QueryDevices != nullptr &&
        HasWord(extensions, "EGL_EXT_platform_device")) {
      constexpr EGLint MostDevices = 16;
      EGLDeviceEXT devices[MostDevices] = {};
      EGLint count = 0;
      if (m_egl.QueryDevices(MostDevices, devices, &count) == EGL_FALSE) count = 0;
      for (EGLint i = 0; i < count; ++i) {
        if (Take(m_egl.GetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr))) return;
      }
    }
    if (Take(m_egl.GetDisplay(EGL_DEFAULT_DISPLAY))) return;
    m_reason = "no driver on this machine gives OpenGL 3.3 without a display (on Debian install libgl1-mesa-dri)";
  }

  /// Whether contexts can be had from that display, which is then the process's.
  bool Take(EGLDisplay display) {
    if (display == EGL_NO_DISPLAY || m_egl.Initialize(display, nullptr, nullptr) == EGL_FALSE) return false;
    const EGLContext context = MakeContext(display);
    if (context == EGL_NO_CONTEXT) return false;
    std::string reason;
    const bool good = LoadGlFunctions(Loader(), reason) != nullptr;
    Free(display, context);
    if (good) m_display = display;
    return good;
  }

  Egl m_egl;
  EGLDisplay m_display = EGL_NO_DISPLAY;
  std::string m_reason;
};

const EglDisplayOfProcess& TheDisplay() {
  static const EglDisplayOfProcess display;
  return display;
}

}  // namespace

std::unique_ptr<Offscreen> Offscreen::Make(std::string& reason) {
  const EglDisplayOfProcess& display = TheDisplay();
  if (display.Display() == EGL_NO_DISPLAY) {
    reason = display.Reason();
    return nullptr;
  }
  auto parts = std::make_unique<Parts>();
  parts->Context = display.MakeContext(display.Display());
  if (parts->Context == EGL_NO_CONTEXT) {
    reason = "the driver gives no further context";
    return nullptr;
  }
  parts->Gl = LoadGlFunctions(display.Loader(), reason);
  if (parts->Gl == nullptr) {
    display.Free(display.Display(), parts->Context);
    return nullptr;
  }
  return std::unique_ptr<Offscreen>(new Offscreen(std::move(parts)));
}

bool Offscreen::MakeCurrent() {
  return TheDisplay().MakeCurrent(m_parts->Context);
}

void Offscreen::Release() {
  TheDisplay().Release();
}

Offscreen::~Offscreen() {
  if (MakeCurrent()) m_parts->FreeFramebuffer();
  TheDisplay().Free(TheDisplay().Display(), m_parts->Context);
}

}  // namespace tarnwick::view
