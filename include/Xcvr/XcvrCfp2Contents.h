#pragma once

#include <Vel/Entity.h>
#include <Xcvr/HalCfp2MsaMis.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrMediaTypeRules.h>
#include <Xcvr/XcvrTypes.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>

namespace Xcvr {

/// One table of a module's registers as it was read.
class XCVR_API CfpMsaMisMemoryTable : public Vel::Entity {
 public:
   CfpMsaMisMemoryTable( CfpMsaMisTableId tableId, uint16_t firstAddress, uint8_t registerWidth );
   VEL_ENTITY( CfpMsaMisMemoryTable, Vel::Entity,
      ( Constant, tableId, CfpMsaMisTableId ),
      // Of the first register in the contents.
      ( Constant, firstAddress, uint16_t ),
      // 8 or 16: one byte of the contents a register, or two, the word in the order of the host. Any
      // other width counts as 8.
      ( Constant, registerWidth, uint8_t ),
      // In the order of addresses.
      ( Plain, contents, onContents, Vel::String ) );

   /// How far a register lies behind the first one. Addresses are 16-bit numbers: one in front of the
   /// first lies far behind it.
   [[nodiscard]] uint16_t distance( uint16_t address ) const {
      return static_cast<uint16_t>( address - firstAddress() );
   }
   /// Byte of a register in the contents.
   [[nodiscard]] uint16_t byteOf( uint16_t address ) const {
      return static_cast<uint16_t>( registerWidth() == 16 ? distance( address ) * 2
                                                          : distance( address ) );
   }
   /// A whole register of two bytes, silently: nothing when the contents do not hold it.
   [[nodiscard, gnu::always_inline]] std::optional<uint16_t> word( uint16_t address ) const {
      std::string_view const bytes = contents().view();
      size_t const at = byteOf( address );
      if ( at + 1 >= bytes.size() ) [[unlikely]] {
         return std::nullopt;
      }
      if ( registerWidth() != 16 ) [[unlikely]] {
         return PageView( bytes ).u16be( static_cast<uint32_t>( at ) );
      }
      uint16_t number;
      std::memcpy( &number, bytes.data() + at, sizeof number );
      return number;
   }
   /// The contents from a register on, as bytes.
   [[nodiscard]] PageView bytesFrom( uint16_t address ) const {
      std::string_view const bytes = contents().view();
      size_t const at = distance( address );
      return at < bytes.size() ? bytes.substr( at ) : std::string_view();
   }
   /// Whether a word of this table can have such a field: one of bytes is read in whole words only.
   [[nodiscard]] bool fitsWord( FieldDescriptor field ) const {
      return registerWidth() == 16 ? field.width <= 16 : field.width == 16;
   }
   /// Whether the number in a field can be read as a byte or as a word, whichever the kind is.
   [[nodiscard]] bool holds( FieldDescriptor field, CfpRegisterKind kind ) const {
      return kind == CfpRegisterKind::byte
                ? field.width <= 8 && distance( field.address ) < contents().size()
                : fitsWord( field ) && word( field.address ).has_value();
   }
   /// The characters of a text field, as getStringFromU8Table says, in place.
   [[nodiscard]] std::string_view text( FieldDescriptor field ) const {
      unsigned const count = field.width / 8u * ( registerWidth() == 16 ? 2 : 1 );
      return PageView( contents().view() ).text( distance( field.address ), count );
   }
};

XCVR_API Vel::Ptr<CfpMsaMisMemoryTable> cfpMsaMisMemoryTableFactory( CfpMsaMisTableId tableId,
                                                                     uint16_t firstAddress,
                                                                     uint8_t registerWidth );

/// An operation on the memory could not read. `operation` is its name; source `XcvrCfp2`, level 8.
[[gnu::cold]] XCVR_API void traceCfpUnreadable( char const * operation, std::string_view why );

// The read primitives. What cannot be read is 0 or the empty text. A table that is null, and a field
// that does not lie in its table, are traced under the primitive's name; an empty table is silent.

/// A field of up to eight bits. The registers of the table are bytes, whatever its register width.
[[nodiscard]] inline uint8_t getU8FromTable( FieldDescriptor field,
                                             CfpMsaMisMemoryTable const * table ) {
   if ( !table ) [[unlikely]] {
      traceCfpUnreadable( __func__, "no table" );
      return 0;
   }
   std::string_view const bytes = table->contents().view();
   if ( bytes.empty() ) [[unlikely]] {
      return 0;
   }
   uint16_t const at = table->distance( field.address );
   if ( field.width > 8 || at >= bytes.size() ) [[unlikely]] {
      traceCfpUnreadable( __func__, field.width > 8 ? "field too wide" : "beyond the table" );
      return 0;
   }
   unsigned const byte = static_cast<uint8_t>( bytes[at] );
   if ( field.width == 8 ) {
      return static_cast<uint8_t>( byte );
   }
   return static_cast<uint8_t>(
      field.offset < 8 ? byte >> field.offset & ( ( 1u << field.width ) - 1 ) : 0 );
}

/// A field of up to sixteen bits. In a table of bytes only a whole word, the high byte first; at the
/// table's last byte its low byte is 0.
[[nodiscard, gnu::always_inline]] inline uint16_t
getU16FromTable( FieldDescriptor field, CfpMsaMisMemoryTable const * table ) {
   if ( !table ) [[unlikely]] {
      traceCfpUnreadable( __func__, "no table" );
      return 0;
   }
   Vel::String const & contents = table->contents();
   std::string_view const bytes = contents.view();
   if ( bytes.empty() ) [[unlikely]] {
      return 0;
   }
   if ( !table->fitsWord( field ) ) [[unlikely]] {
      traceCfpUnreadable( __func__, "not a field of this table" );
      return 0;
   }
   bool const words = table->registerWidth() == 16;
   uint16_t const at = table->byteOf( field.address );
   // Of a table of odd length the last byte is no register.
   if ( at >= bytes.size() - words ) [[unlikely]] {
      traceCfpUnreadable( __func__, "beyond the table" );
      return 0;
   }
   if ( !words ) {
      uint8_t const low =
         at + 1u < bytes.size() ? static_cast<uint8_t>( bytes[at + 1u] ) : uint8_t( 0 );
      return static_cast<uint16_t>( static_cast<uint8_t>( bytes[at] ) << 8 | low );
   }
   uint16_t word;
   std::memcpy( &word, bytes.data() + at, sizeof word );
   if ( field.width == 16 ) {
      return word;
   }
   return static_cast<uint16_t>(
      field.offset < 16 ? word >> field.offset & ( ( 1u << field.width ) - 1 ) : 0 );
}

/// As many characters as the field's width has bytes, twice that in a table of words; of a text past
/// the end of the table what there is. It starts as many bytes behind the start of the contents as
/// there are registers in between, whatever their width.
[[nodiscard]] XCVR_API Vel::String getStringFromU8Table( FieldDescriptor field,
                                                         CfpMsaMisMemoryTable const * table );

// The same of counted pointers.
[[nodiscard]] inline uint8_t getU8FromTable( FieldDescriptor field,
                                             Vel::Ptr<CfpMsaMisMemoryTable const> const & table ) {
   return getU8FromTable( field, table.get() );
}
[[nodiscard]] inline uint16_t
getU16FromTable( FieldDescriptor field, Vel::Ptr<CfpMsaMisMemoryTable const> const & table ) {
   return getU16FromTable( field, table.get() );
}
[[nodiscard]] inline Vel::String
getStringFromU8Table( FieldDescriptor field, Vel::Ptr<CfpMsaMisMemoryTable const> const & table ) {
   return getStringFromU8Table( field, table.get() );
}

/// The register tables of a CFP2, CFPx or CFP2-DCO module, and what they say.
///
/// Nothing here fails: what cannot be read is 0, false or empty, and traced. Where a register lies
/// and which modules have it says its row in the register table; numbers are raw, and the decoders
/// below say in which unit. The units of fibre lengths, start-up times, fine tuning and set power are the
/// usual ones; no public document confirms them.
class XCVR_API CfpMsaMisIdEepromContents : public Vel::Entity {
 public:
   explicit CfpMsaMisIdEepromContents( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( CfpMsaMisIdEepromContents, Vel::Entity,
      ( Instances, memory, onMemory, CfpMsaMisTableId, CfpMsaMisMemoryTable ),
      // The vendor's own; carried, not decoded.
      ( Plain, oclaroModulationDepthInitVal, onOclaroModulationDepthInitVal, uint16_t ) );

   /// A new table, with empty contents, in place of the one that there may be. Null for an id that is
   /// none of a table.
   Vel::Ptr<CfpMsaMisMemoryTable> memoryIs( CfpMsaMisTableId tableId, uint16_t firstAddress,
                                            uint8_t registerWidth );
   /// The table, made with the first address and the register width of its kind if it is not there.
   Vel::Ptr<CfpMsaMisMemoryTable> memoryIs( CfpMsaMisTableId tableId );
   /// The table, without counting it; null when it is not there.
   [[nodiscard]] CfpMsaMisMemoryTable const * table( CfpMsaMisTableId tableId ) const {
      return memory_.get( tableId );
   }

 private:
   using Access = CfpTable::Access;
   static consteval Access access( std::string_view name ) { return CfpTable::access( name ); }

 public:
   // Identification.

   CfpMsaMisIdentifier identifier() const {
      // Not through u8(), which asks for the identifier itself.
      constexpr CfpTable::Place place = access( "identifier" ).places[0];
      return static_cast<CfpMsaMisIdentifier>(
         getU8FromTable( place.field, table( place.table ) ) );
   }
   uint8_t identifierExtended() const { return u8( access( "identifierExtended" ) ); }
   uint8_t connector() const { return u8( access( "connector" ) ); }
   CfpMsaMisEthAppCode ethernetApplicationCode() const {
      return static_cast<CfpMsaMisEthAppCode>( u8( access( "ethernetApplicationCode" ) ) );
   }
   uint8_t networkLanes() const { return u8( access( "networkLanes" ) ); }
   uint8_t hostLanes() const { return u8( access( "hostLanes" ) ); }
   /// In 0.2 Gb/s; 0, traced, for a CFPx, whose register is read as a byte although it is a word.
   /// Intended: the rate of these modules follows from their media type.
   uint8_t networkLaneBitRateMax() const { return u8( access( "networkLaneBitRateMax" ) ); }
   /// km.
   uint8_t smfFiberLengthMax() const { return u8( access( "smfFiberLengthMax" ) ); }
   /// In 10 m.
   uint8_t mmfFiberLengthMax() const { return u8( access( "mmfFiberLengthMax" ) ); }
   /// pm: the middle of the shortest and the longest wavelength.
   uint32_t laserWavelengthInteger() const {
      return ( uint32_t{ u16( access( "minWavelength" ) ) } + u16( access( "maxWavelength" ) ) ) *
                25 >>
             1;
   }
   /// Whole nanometres, of every module.
   LaserWavelengthPrecision laserWavelengthPrecision() const { return laserWavelengthPrecisionNm; }
   /// Texts are 16 characters (date code 8), padding kept.
   Vel::String vendorName() const { return text( access( "vendorName" ) ); }
   Vel::String vendorPn() const { return text( access( "vendorPn" ) ); }
   Vel::String vendorSn() const { return text( access( "vendorSn" ) ); }
   Vel::String dateCode() const { return text( access( "dateCode" ) ); }
   /// Two characters, ending at a zero; "01" when both are zero.
   Vel::String vendorRev() const;
   uint8_t mgmtRevSupported() const { return u8( access( "mgmtRevSupported" ) ); }
   bool tempSupported() const { return u8( access( "tempSupported" ) ); }
   bool voltageSupported() const { return u8( access( "voltageSupported" ) ); }
   bool txBiasSupported() const { return u8( access( "txBiasSupported" ) ); }
   bool txPowerSupported() const { return u8( access( "txPowerSupported" ) ); }
   bool rxPowerSupported() const { return u8( access( "rxPowerSupported" ) ); }
   /// s.
   uint8_t timeHighPowerUpMax() const { return u8( access( "timeHighPowerUpMax" ) ); }
   uint8_t timeTxTurnOnMax() const { return u8( access( "timeTxTurnOnMax" ) ); }

   // Thresholds.

   uint16_t tempHighAlarm() const { return u16( access( "tempHighAlarm" ) ); }
   uint16_t tempHighWarn() const { return u16( access( "tempHighWarn" ) ); }
   uint16_t tempLowWarn() const { return u16( access( "tempLowWarn" ) ); }
   uint16_t tempLowAlarm() const { return u16( access( "tempLowAlarm" ) ); }
   uint16_t voltageHighAlarm() const { return u16( access( "voltageHighAlarm" ) ); }
   uint16_t voltageHighWarn() const { return u16( access( "voltageHighWarn" ) ); }
   uint16_t voltageLowWarn() const { return u16( access( "voltageLowWarn" ) ); }
   uint16_t voltageLowAlarm() const { return u16( access( "voltageLowAlarm" ) ); }
   uint16_t txBiasHighAlarm() const { return u16( access( "txBiasHighAlarm" ) ); }
   uint16_t txBiasHighWarn() const { return u16( access( "txBiasHighWarn" ) ); }
   uint16_t txBiasLowWarn() const { return u16( access( "txBiasLowWarn" ) ); }
   uint16_t txBiasLowAlarm() const { return u16( access( "txBiasLowAlarm" ) ); }
   uint16_t txPowerHighAlarm() const { return u16( access( "txPowerHighAlarm" ) ); }
   uint16_t txPowerHighWarn() const { return u16( access( "txPowerHighWarn" ) ); }
   uint16_t txPowerLowWarn() const { return u16( access( "txPowerLowWarn" ) ); }
   uint16_t txPowerLowAlarm() const { return u16( access( "txPowerLowAlarm" ) ); }
   uint16_t rxPowerHighAlarm() const { return u16( access( "rxPowerHighAlarm" ) ); }
   uint16_t rxPowerHighWarn() const { return u16( access( "rxPowerHighWarn" ) ); }
   uint16_t rxPowerLowWarn() const { return u16( access( "rxPowerLowWarn" ) ); }
   uint16_t rxPowerLowAlarm() const { return u16( access( "rxPowerLowAlarm" ) ); }

   // Tuning.

   /// GHz; what is below a GHz is cut off.
   uint32_t minFrequency() const {
      return ghz( u16( access( "minFrequencyTHz" ) ), u16( access( "minFrequencyGHz" ) ) );
   }
   uint32_t maxFrequency() const {
      return ghz( u16( access( "maxFrequencyTHz" ) ), u16( access( "maxFrequencyGHz" ) ) );
   }
   /// MHz.
   uint16_t txFineTuneRange() const { return u16( access( "txFineTuneRange" ) ); }
   /// Grids in bits 15-10, named in the register table; below them the number of channels.
   uint16_t tuningCapabilities() const { return u16( access( "tuningCapabilities" ) ); }

   // Status and monitors. The monitors and settings of a lane above 15 are 0.

   uint16_t globalAlarmSummary() const { return u16( access( "globalAlarmSummary" ) ); }
   /// Bit n: an alarm or warning of network lane n; a fault or status of network or host lane n.
   uint16_t networkLaneAWSummary() const { return u16( access( "networkLaneAWSummary" ) ); }
   uint16_t networkLaneFSSummary() const { return u16( access( "networkLaneFSSummary" ) ); }
   uint16_t hostLaneFSSummary() const { return u16( access( "hostLaneFSSummary" ) ); }
   /// One for the module, whatever the lane.
   uint16_t temperature( uint8_t lane ) const {
      return lane < lanes ? u16( access( "temperature" ) ) : uint16_t( 0 );
   }
   uint16_t voltage() const { return u16( access( "voltage" ) ); }
   uint16_t txBias( uint8_t lane ) const { return ofLane( access( "txBias" ), lane ); }
   uint16_t txPower( uint8_t lane ) const { return ofLane( access( "txPower" ), lane ); }
   uint16_t rxPower( uint8_t lane ) const { return ofLane( access( "rxPower" ), lane ); }
   /// These two know no last lane: beyond lane 15 they read whatever lies there. Intended.
   uint16_t txPowerCfpx( uint8_t lane ) const { return u16( access( "txPowerCfpx" ), lane ); }
   uint16_t rxPowerCfpx( uint8_t lane ) const { return u16( access( "rxPowerCfpx" ), lane ); }
   uint8_t rxOutputPreEmphasis( uint8_t lane ) const {
      return static_cast<uint8_t>( ofLane( access( "rxOutputPreEmphasis" ), lane ) );
   }
   uint8_t txInputEqualization( uint8_t lane ) const {
      return static_cast<uint8_t>( ofLane( access( "txInputEqualization" ), lane ) );
   }

   // Registers of a CFPx or CFP2-DCO.

   uint16_t moduleGeneralControl() const { return u16( access( "moduleGeneralControl" ) ); }
   /// One bit is set; their names are in the register table.
   uint16_t moduleState() const { return u16( access( "moduleState" ) ); }
   uint16_t moduleGeneralStatus() const { return u16( access( "moduleGeneralStatus" ) ); }
   uint16_t moduleFaultStatus() const { return u16( access( "moduleFaultStatus" ) ); }
   uint16_t vendorSpecificFAWS() const { return u16( access( "vendorSpecificFAWS" ) ); }
   uint16_t moduleGeneralStatusLatched() const {
      return u16( access( "moduleGeneralStatusLatched" ) );
   }
   uint16_t moduleFaultStatusLatched() const { return u16( access( "moduleFaultStatusLatched" ) ); }
   uint16_t vendorSpecificFAWSLatched() const {
      return u16( access( "vendorSpecificFAWSLatched" ) );
   }
   uint16_t txChannel() const { return u16( access( "txChannel" ) ); }
   /// In 0.01 dBm, signed.
   uint16_t txPowerConfig() const { return u16( access( "txPowerConfig" ) ); }
   /// MHz, signed.
   uint16_t txFineTuneFreq() const { return u16( access( "txFineTuneFreq" ) ); }
   /// 1: a linear driver.
   uint8_t txRfDriverType() const {
      return static_cast<uint8_t>( u16( access( "txRfDriverType" ) ) );
   }
   HalCfpxModFormatSel modFormatSel() const {
      return HalCfpxModFormatSel( u16( access( "modFormatSel" ) ) );
   }
   HalCfpxTxRfEnabledStatus txRfEnabledStatus() const {
      return HalCfpxTxRfEnabledStatus( u16( access( "txRfEnabledStatus" ) ) );
   }
   HalCfpxTxDriverCtrl txDriverCtrl() const {
      return HalCfpxTxDriverCtrl( u16( access( "txDriverCtrl" ) ) );
   }
   HalCfpxRxSubsystemCtrl rxSubsystemCtrl() const {
      return HalCfpxRxSubsystemCtrl( u16( access( "rxSubsystemCtrl" ) ) );
   }
   /// Whether the polarizations, and I and Q of each, are swapped. Two bits code both I/Q swaps.
   bool txHvSwap() const { return u16( access( "txHvSwap" ) ); }
   bool txHiqSwap() const { return hSwapped( u16( access( "txIqSwap" ) ) ); }
   bool txViqSwap() const { return vSwapped( u16( access( "txIqSwap" ) ) ); }
   bool rxHvSwap() const { return u16( access( "rxHvSwap" ) ); }
   bool rxHiqSwap() const { return hSwapped( u16( access( "rxIqSwap" ) ) ); }
   bool rxViqSwap() const { return vSwapped( u16( access( "rxIqSwap" ) ) ); }
   bool txSkewAvailable() const { return u16( access( "txSkewAvailable" ) ); }
   bool rxSkewAvailable() const { return u16( access( "rxSkewAvailable" ) ); }
   uint16_t maxRxAttenuation() const { return u16( access( "maxRxAttenuation" ) ); }
   uint16_t currRxAttenuation() const { return u16( access( "currRxAttenuation" ) ); }
   uint16_t perChannelRxPower() const { return u16( access( "perChannelRxPower" ) ); }
   /// Of host channels 0 to 3, else 0. The registers of channels 1 and 2 are interleaved on purpose.
   float txSkew( uint8_t hostChannel ) const;
   /// Of host channels 1 and 3; of any other 0, traced.
   float rxSkew( uint8_t hostChannel ) const;

   /// Whether the module has a linear driver of that maker: by the start of its serial number, else by
   /// its vendor name.
   bool isOclaroLinear() const;
   bool isAcaciaLinear() const;
   /// Bit n: lane n receives no signal. Of a CFPx or CFP2-DCO the module as a whole: 0 or 1.
   uint16_t rxLosStatus() const;
   /// Bit n: the transmitter of lane n has a fault. Of a CFPx or CFP2-DCO the module as a whole: 0 or 1.
   uint16_t txFaultStatus() const;

   // Decoders of raw values. Nothing is cut to a range.

   /// °C.
   static double decodeTemperature( int16_t raw ) { return raw * 0.00390625; }
   /// V.
   static double decodeVoltage( uint16_t raw ) { return raw * 0.0001; }
   /// V, of the monitor: a CFPx or CFP2-DCO has it in mV.
   double decodeDomVoltage( uint16_t raw ) const {
      return isIn( cfpxAndDcoModules ) ? raw * 0.001 : raw * 0.0001;
   }
   /// mA.
   static double decodeTxBias( uint16_t raw ) { return raw * 0.002; }
   static double decodeTxBiasCfpx( uint16_t raw ) { return raw * 0.1; }
   /// dBm; minus infinity for 0.
   static double decodePower( uint16_t raw );
   static double decodePowerCfpx( int16_t raw ) { return raw * 0.01; }
   /// dB.
   static double decodeAttenuation( uint16_t raw ) { return raw * 0.01; }

   // Checksums: of tables 8000h, 8080h, 8100h and 8180h; of any other, and of one that is not there, 0
   // and not valid. A short table is summed as far as it reaches, and a stored sum that cannot be read
   // counts as 0. The one of table 8100h is stored in the first register of table 8180h.

   uint8_t checksumCalculated( CfpMsaMisTableId tableId ) const;
   uint8_t checksum( CfpMsaMisTableId tableId ) const;
   bool checksumValid( CfpMsaMisTableId tableId ) const;

   /// What the module is; xcvrUnknown when no rule knows it.
   MediaType mediaType() const;
   /// The same with the rule that decided.
   MediaTypeDecision mediaTypeDecision() const;

   /// Whether the module is one of these.
   bool isIn( CfpModules modules ) const { return modules & cfpModulesOf( identifier() ); }
   /// Whether the number in a register can be read: the module has it, in a table that was read so far.
   bool holds( CfpTable::Access const & access, uint8_t lane = 0 ) const;
   /// The characters of a text, in place.
   std::string_view view( CfpTable::Access const & access ) const;
   /// A 16-bit register of all lanes of its row; traced under its name when the module lacks it.
   [[gnu::always_inline]] uint16_t u16( CfpTable::Access const & access, uint8_t lane = 0 ) const {
      return read<uint16_t>( access, lane, []( FieldDescriptor field, auto const * table ) {
         return getU16FromTable( field, table );
      } );
   }

   /// The most lanes that the management interface knows.
   static constexpr uint8_t lanes = 16;

 private:
   template <typename T, typename Get>
   [[gnu::always_inline]] T read( Access const & access, uint8_t lane, Get const & get ) const {
      CfpTable::Place place =
         access.anywhere() ? access.places[0] : access.placeIn( cfpModulesOf( identifier() ) );
      if ( place.modules == noCfpModules ) [[unlikely]] {
         // The names in the register table are literals, so this one ends in a NUL.
         traceCfpUnreadable( access.name.data(), "not a register of this module" );
         return 0;
      }
      place.field.address = static_cast<uint16_t>( place.field.address + lane );
      return get( place.field, table( place.table ) );
   }
   [[gnu::always_inline]] uint8_t u8( Access const & access ) const {
      return read<uint8_t>( access, 0, []( FieldDescriptor field, auto const * table ) {
         return getU8FromTable( field, table );
      } );
   }
   uint16_t ofLane( Access const & access, uint8_t lane ) const {
      return lane < lanes ? u16( access, lane ) : uint16_t( 0 );
   }
   /// Inlined always, so that the copy is one of constant width.
   [[gnu::always_inline]] Vel::String text( Access const & access ) const {
      FieldDescriptor const field = access.places[0].field;
      CfpMsaMisMemoryTable const * found = table( access.places[0].table );
      if ( found && found->registerWidth() != 16 ) [[likely]] {
         return found->bytesFrom( field.address ).text( 0, field.width / 8u );
      }
      return getStringFromU8Table( field, found );
   }
   static uint32_t ghz( uint16_t thz, uint16_t fraction ) {
      return thz * 1000u + static_cast<uint32_t>( fraction * 0.05 );
   }
   static bool hSwapped( uint16_t code ) { return code == 1 || code == 3; }
   static bool vSwapped( uint16_t code ) { return code == 1 || code == 2; }
   bool isLinearOf( std::string_view serialNumberStart, std::string_view maker ) const;
};

XCVR_API Vel::Ptr<CfpMsaMisIdEepromContents> cfpMsaMisIdEepromContentsFactory( Vel::Name name );

/// The rules of `CfpMsaMisIdEepromContents::mediaType`, in the order in which they are tried.
[[nodiscard]] XCVR_API std::span<MediaTypeRule const> cfpMediaTypeRules();

/// The line of a CFP2-DCO in the register tables of its contents, raw. Everything is 0 without contents
/// and where a register cannot be read; of a value of two registers each half by itself.
class XCVR_API Cfp2DcoEepromContents : public Vel::Entity {
 public:
   /// `contents` may be null.
   explicit Cfp2DcoEepromContents( Vel::Ptr<CfpMsaMisIdEepromContents const> contents );
   VEL_ENTITY( Cfp2DcoEepromContents, Vel::Entity,
      ( Derived, networkOsnrEstimate, uint16_t ),
      ( Derived, networkLaneVendorSpecificFAWS, uint16_t ),
      ( Derived, clientIntfPcsAlarmStatus, uint16_t ),
      ( Derived, netLaneRxChannelPower, uint16_t ),
      ( Derived, moduleExtendedFunctionStatusLatched, uint16_t ),
      ( Derived, networkLaneVendorSpecificFAWSLatched, uint16_t ),
      ( Derived, clientIntfPcsAlarmStatusLatched, uint16_t ) );

 private:
   using Access = CfpTable::Access;
   static consteval Access access( std::string_view name ) { return CfpTable::access( name ); }

 public:
   uint16_t txTurnUpState() const { return u16( access( "txTurnUpState" ) ); }
   uint16_t rxTurnUpState() const { return u16( access( "rxTurnUpState" ) ); }
   uint32_t networkBer() const {
      return u32( access( "networkBerHigh" ), access( "networkBerLow" ) );
   }
   /// Blocks that error correction could not repair.
   uint32_t netFecUncBlkCount() const {
      return u32( access( "netFecUncBlkCountHigh" ), access( "netFecUncBlkCountLow" ) );
   }
   uint16_t laserAge() const { return u16( access( "laserAge" ) ); }
   uint16_t laserFaultCode() const { return u16( access( "laserFaultCode" ) ); }
   uint16_t networkOsnrEstimate() const { return u16( access( "networkOsnrEstimate" ) ); }
   uint16_t netLaneRxChannelPower() const { return u16( access( "netLaneRxChannelPower" ) ); }
   /// Of client lanes 0 and 1; of any other 0.
   uint16_t clientIntfPcsAlarmStatus( uint8_t lane = 0 ) const {
      return ofLane( access( "clientIntfPcsAlarmStatus" ), lane );
   }
   uint16_t clientIntfPcsAlarmStatusLatched( uint8_t lane = 0 ) const {
      return ofLane( access( "clientIntfPcsAlarmStatusLatched" ), lane );
   }
   uint16_t moduleExtendedFunctionStatusLatched() const {
      return u16( access( "moduleExtendedFunctionStatusLatched" ) );
   }
   uint16_t networkLaneVendorSpecificFAWS() const {
      return u16( access( "networkLaneVendorSpecificFAWS" ) );
   }
   uint16_t networkLaneVendorSpecificFAWSLatched() const {
      return u16( access( "networkLaneVendorSpecificFAWSLatched" ) );
   }
   /// The halves are sixteen registers apart.
   uint32_t rxChromDispersion() const {
      return u32( access( "rxChromDispersionHigh" ), access( "rxChromDispersionLow" ) );
   }
   uint16_t rxDiffGroupDelay() const { return u16( access( "rxDiffGroupDelay" ) ); }
   uint16_t rxStateOfPolarization() const { return u16( access( "rxStateOfPolarization" ) ); }
   uint16_t rxQFactor() const { return u16( access( "rxQFactor" ) ); }
   uint16_t rxCarrierFreqOffset() const { return u16( access( "rxCarrierFreqOffset" ) ); }
   uint16_t rxSnr() const { return u16( access( "rxSnr" ) ); }

 private:
   uint16_t u16( Access const & access, uint8_t lane = 0 ) const {
      return contents_ ? contents_->u16( access, lane ) : uint16_t( 0 );
   }
   uint32_t u32( Access const & high, Access const & low ) const {
      return uint32_t{ u16( high ) } << 16 | u16( low );
   }
   uint16_t ofLane( Access const & access, uint8_t lane ) const {
      return lane < access.lanes ? u16( access, lane ) : uint16_t( 0 );
   }

   Vel::Ptr<CfpMsaMisIdEepromContents const> contents_;
};

XCVR_API Vel::Ptr<Cfp2DcoEepromContents>
cfp2DcoEepromContentsFactory( Vel::Ptr<CfpMsaMisIdEepromContents const> contents );

} // namespace Xcvr
