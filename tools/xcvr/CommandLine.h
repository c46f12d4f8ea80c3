#pragma once

namespace XcvrTool {

/// The whole program: reads the arguments, carries out the command, gives the exit code.
int run( int argc, char const * const * argv );

} // namespace XcvrTool
