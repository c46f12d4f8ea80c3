#include "tools/xcvr/CommandLine.h"

int main( int argc, char ** argv ) {
   return XcvrTool::run( argc, argv );
}
