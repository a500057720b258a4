#include "sdk/tool_console.h"
#include "sdk/vtex_program.h"

int main(int argumentCount, char** arguments) {
  return tarnwick::sdk::RunTool(argumentCount, arguments, tarnwick::sdk::Vtex);
}
