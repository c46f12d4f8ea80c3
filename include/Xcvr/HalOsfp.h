#pragma once

#include <Vel/Assert.h>
#include <Vel/Bounded.h>
#include <Vel/Enum.h>
#include <Vel/Value.h>
#include <Xcvr/XcvrApi.h>

#include <cstdint>

// The memory of OSFP and QSFP-DD modules (CMIS): how its registers are addressed, and the registers
// that hold a field for each lane. Lanes count from 0, as everywhere in this model; the standard
// counts them from 1.
namespace Xcvr {

/// The identifiers (SFF-8024) that the system tells apart; any other prints as its number.
VEL_ENUM( OsfpIdentifier,
   identifierUnknown, identifierQsfpDd = 0x18, identifierOsfp = 0x19 );
using enum OsfpIdentifier;

/// Highest speed of the management bus (lower page, byte 2 bits 3-2).
VEL_ENUM( OsfpSmbusSpeedReg,
   upto400kHz, upto1MHz );
using enum OsfpSmbusSpeedReg;

/// What a module is made for (lower page, byte 85); it says which table its media interface codes
/// are of.
VEL_ENUM( OsfpModuleTypeEncoding,
   osfpTypeUndefined, osfpTypeOpticalMmf, osfpTypeOpticalSmf, osfpTypePassiveCu,
   osfpTypeActiveCable, osfpTypeBaseT );
using enum OsfpModuleTypeEncoding;

/// Module state (lower page, byte 3 bits 3-1).
VEL_ENUM( OsfpModuleState,
   moduleStateUnknown, moduleLowPwr, modulePwrUp, moduleReady, modulePwrDn, moduleFault );
using enum OsfpModuleState;

/// State of a lane's data path (page 11h, bytes 128-131).
VEL_ENUM( OsfpDataPathState,
   dataPathStateUnknown, dataPathDeactivated, dataPathInit, dataPathDeinit, dataPathActivated,
   dataPathTxTurnOn, dataPathTxTurnOff, dataPathInitialized );
using enum OsfpDataPathState;

/// Bank of a page: eight lanes each. The lower page and pages 00h to 02h have none.
VEL_ENUM( OsfpBank,
   bankNa = 65535, bank0 = 0, bank1 );

/// A page. Upper pages, which bytes 128 to 255 show, have their own numbers as codes.
VEL_ENUM( OsfpPage,
   upperPage00 = 0, upperPage01, upperPage02, upperPage03, upperPage10 = 16, upperPage11,
   lowerPage00 = 256, upperPageInvalid = 65535 );

/// Address of a byte as the tables of CMIS number it: 0 to 127 on the lower page, 128 to 255 on an
/// upper page.
using OsfpAddr = uint8_t;

/// A page of a bank: key of the raw memory.
class XCVR_API OsfpBankAndPage {
   VEL_VALUE( OsfpBankAndPage,
      ( bank, OsfpBank ),
      ( page, OsfpPage ) );

 public:
   /// Cheaper than that of VEL_KEY: a parser looks pages up all the time.
   [[nodiscard]] std::size_t hash() const {
      return ( static_cast<std::size_t>( page() ) << 16 ^ static_cast<std::size_t>( bank() ) ) *
             0x9e3779b97f4a7c15u;
   }
   friend auto operator<=>( OsfpBankAndPage const &, OsfpBankAndPage const & ) = default;
};

/// A register: `size` bytes from `addr` on.
class XCVR_API OsfpRegAddr {
   VEL_VALUE( OsfpRegAddr,
      ( bank, OsfpBank ),
      ( page, OsfpPage ),
      ( addr, OsfpAddr ),
      ( size, uint8_t ) );
   VEL_KEY( OsfpRegAddr )
};

/// A lane; any number beyond 7 is a fatal assertion. Its string form is the number alone.
class XCVR_API OsfpLane {
   VEL_BOUNDED_VALUE( OsfpLane, 7, VEL_ASSERT_FAILED );
};

/// The lanes of a bank.
constexpr uint8_t osfpLanes = 8;

/// Place of an application in a list of application descriptors; beyond 7 it is a fatal assertion.
class XCVR_API OsfpApplicationOffset {
   VEL_BOUNDED_VALUE( OsfpApplicationOffset, 7, VEL_ASSERT_FAILED );
};

/// Monitor registers of equal size, one a lane, one after the other.
class XCVR_API OsfpDomRegAddr {
   VEL_VALUE( OsfpDomRegAddr,
      ( bank, OsfpBank ),
      ( page, OsfpPage ),
      ( addr, OsfpAddr ),
      ( size, uint8_t ) );

 public:
   [[nodiscard]] OsfpRegAddr value( uint8_t index ) const {
      return { bank(), page(), static_cast<OsfpAddr>( addr() + size() * index ), size() };
   }
};

/// Registers with the media lane assignments of applications, one after the other.
class XCVR_API OsfpMediaLaneAssignmentAddress {
   VEL_VALUE( OsfpMediaLaneAssignmentAddress,
      ( bank, OsfpBank ),
      ( page, OsfpPage ),
      ( addr, OsfpAddr ),
      ( size, uint8_t ) );

 public:
   [[nodiscard]] OsfpRegAddr value( uint8_t index ) const {
      return { bank(), page(), static_cast<OsfpAddr>( addr() + size() * index ), size() };
   }
};

/// A list of application descriptors, four bytes each.
class XCVR_API OsfpApplicationAddress {
   VEL_VALUE( OsfpApplicationAddress,
      ( page, OsfpPage ),
      ( baseAddr, OsfpAddr ),
      ( numApplications, uint8_t ) );

 public:
   [[nodiscard]] OsfpRegAddr value( uint8_t index ) const {
      constexpr uint8_t descriptorSize = 4;
      uint8_t const offset = OsfpApplicationOffset( index ).value();
      return { OsfpBank::bankNa, page(),
               static_cast<OsfpAddr>( baseAddr() + descriptorSize * offset ), descriptorSize };
   }
};

/// The application-select bytes of a control set, one a lane.
class XCVR_API OsfpControlSetAddress {
   VEL_VALUE( OsfpControlSetAddress,
      ( bank, OsfpBank ),
      ( page, OsfpPage ),
      ( baseAddr, OsfpAddr ) );

 public:
   [[nodiscard]] OsfpRegAddr laneApSelCode( OsfpLane lane ) const {
      return { bank(), page(), static_cast<OsfpAddr>( baseAddr() + lane.value() ), 1 };
   }
};

/// A register with a bit for each lane.
class XCVR_API OsfpLaneBitmaskCtrlReg8 {
   VEL_VALUE( OsfpLaneBitmaskCtrlReg8,
      ( value, uint8_t ) );

 public:
   [[nodiscard]] bool laneVal( OsfpLane lane ) const { return value() >> lane.value() & 1; }
   void laneValIs( OsfpLane lane, bool on ) {
      if ( laneVal( lane ) != on ) {
         valueIs( static_cast<uint8_t>( value() ^ 1u << lane.value() ) );
      }
   }
   /// Clears the bit; what it was.
   bool laneValDel( OsfpLane lane ) {
      bool const old = laneVal( lane );
      laneValIs( lane, false );
      return old;
   }
};

/// A register with four bits for each lane: lane 0 in the lowest bits of the first byte, which is
/// the least significant one of the image.
class XCVR_API OsfpLaneBitmaskCtrlReg32 {
   VEL_VALUE( OsfpLaneBitmaskCtrlReg32,
      ( value, uint32_t ) );

 public:
   [[nodiscard]] uint8_t laneVal( OsfpLane lane ) const {
      return static_cast<uint8_t>( value() >> 4 * lane.value() & 0xf );
   }
   void laneValIs( OsfpLane lane, Vel::U4 field ) {
      if ( laneVal( lane ) != field.value() ) {
         int const shift = 4 * lane.value();
         valueIs( ( value() & ~( 0xfu << shift ) ) | uint32_t{ field.value() } << shift );
      }
   }
   /// Clears the field; what it was.
   uint8_t laneValDel( OsfpLane lane ) {
      uint8_t const old = laneVal( lane );
      laneValIs( lane, Vel::U4( 0 ) );
      return old;
   }
};

/// Which monitors a module has (page 01h, bytes 159 and 160). The bits have names in the field
/// table.
class XCVR_API OsfpImplMonitorsAdvertisement {
   VEL_VALUE( OsfpImplMonitorsAdvertisement,
      ( value, uint16_t ) );

 public:
   /// What a Tx bias reading is to be multiplied by: 1, 2 or 4. The code that the standard reserves
   /// counts as 1. (The spelling is intended: other parts of the system call it so.)
   [[nodiscard]] uint8_t txBiasMultiplerValue() const {
      unsigned const code = value() >> 3 & 3u;
      return code == 1 ? 2 : code == 2 ? 4 : 1;
   }
};

} // namespace Xcvr
