// The formats whose codecs are left out. The library numbers its formats by the order in which they are made known, so
// each must be; it asks for a name and for extensions, and takes a format that can neither be read nor written for one
// that is of no use.
#include "FreeImage.h"
#include "Plugin.h"

namespace {

const char* DLL_CALLCONV NoFormat() {
  return "-";
}

const char* DLL_CALLCONV NoExtensions() {
  return "";
}

void MakeAbsent(Plugin* plugin) {
  plugin->format_proc = NoFormat;
  plugin->extension_proc = NoExtensions;
}

}  // namespace

void DLL_CALLCONV InitEXR(Plugin* plugin, int) {
  MakeAbsent(plugin);
}
void DLL_CALLCONV InitJ2K(Plugin* plugin, int) {
  MakeAbsent(plugin);
}
void DLL_CALLCONV InitJP2(Plugin* plugin, int) {
  MakeAbsent(plugin);
}
void DLL_CALLCONV InitJXR(Plugin* plugin, int) {
  MakeAbsent(plugin);
}
void DLL_CALLCONV InitRAW(Plugin* plugin, int) {
  MakeAbsent(plugin);
}
