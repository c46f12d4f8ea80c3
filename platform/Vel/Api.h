#pragma once

/// Marks what the shared library exports; everything else stays hidden.
#define VEL_API __attribute__( ( visibility( "default" ) ) )
