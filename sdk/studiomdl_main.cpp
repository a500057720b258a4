#include "sdk/studiomdl_program.h"
#include "sdk/tool_console.h"

int main(int argumentCount, char** arguments) {
  return tarnwick::sdk::RunTool(argumentCount, arguments, tarnwick::sdk::Studiomdl);
}
