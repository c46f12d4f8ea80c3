#pragma once

/// Marks what libXcvr.so exports. The library is compiled with hidden visibility, so a class or
/// function without the mark cannot be reached from outside.
#define XCVR_API __attribute__( ( visibility( "default" ) ) )
