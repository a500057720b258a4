#include "sdk/tool_console.h"
#include "sdk/vtf2tga_program.h"

int main(int argumentCount, char** arguments) {
  return tarnwick::sdk::RunTool(argumentCount, arguments, tarnwick::sdk::Vtf2Tga);
}
