#pragma once

#include <Vel/Entity.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrDirs.h>
#include <Xcvr/XcvrSfpContents.h>
#include <Xcvr/XcvrStatus.h>

#include <array>
#include <cstdint>
#include <vector>

// The status and configuration of an SFP slot.
namespace Xcvr {

/// How far the PHY inside a 1000BASE-T module has been programmed.
VEL_ENUM( Xcvr1000BaseTProgramState,
   notProgrammed, programmedAuto100M, programmedForced100M, programmedAuto1G );
using enum Xcvr1000BaseTProgramState;

/// One byte read from a module.
class XCVR_API XcvrSff8472DomRegisterData {
   VEL_VALUE( XcvrSff8472DomRegisterData,
      // The device address, 0xA2 for diagnostics, in the high byte: 0xA260 is A2h byte 96.
      ( address, uint16_t ),
      ( data, uint8_t ) );

 public:
   XcvrSff8472DomRegisterData( Sff8472::RegisterId id, uint8_t data )
      : XcvrSff8472DomRegisterData( static_cast<uint16_t>( id ), data ) {}
};

/// What an SFP slot can do.
class XCVR_API SfpSlotCapabilities {
   VEL_VALUE( SfpSlotCapabilities,
      ( agilePort, bool ),
      ( maxBlockReadSize, uint32_t ) ); // bytes in one read of the management bus
};

/// Status and control bits of a module (SFF-8472 A2h byte 110). What the module does not implement
/// (A0h byte 93) reads as false.
class XCVR_API SfpStatusBits {
   VEL_VALUE( SfpStatusBits,
      ( txDisabled, bool ),       // state of the transmitter, whatever disabled it
      ( softTxDisable, bool ),    // the control by which software disables it
      ( rateSelect1, bool ),      // state of pin RS1
      ( rateSelect0, bool ),      // state of pin RS0
      ( softRateSelect0, bool ),  // the control by which software selects the rate
      ( txFault, bool ),
      ( rxLos, bool ),
      ( dataNotReady, bool ) ); // the monitors hold no readings yet
};

/// The module's own alarms and warnings (SFF-8472 A2h bytes 112-113 and 116-117).
class XCVR_API SfpDomFlags {
   VEL_VALUE( SfpDomFlags,
      ( tempHighAlarm, bool ),
      ( tempLowAlarm, bool ),
      ( tempHighWarn, bool ),
      ( tempLowWarn, bool ),
      ( voltageHighAlarm, bool ),
      ( voltageLowAlarm, bool ),
      ( voltageHighWarn, bool ),
      ( voltageLowWarn, bool ),
      ( txBiasHighAlarm, bool ),
      ( txBiasLowAlarm, bool ),
      ( txBiasHighWarn, bool ),
      ( txBiasLowWarn, bool ),
      ( txPowerHighAlarm, bool ),
      ( txPowerLowAlarm, bool ),
      ( txPowerHighWarn, bool ),
      ( txPowerLowWarn, bool ),
      ( rxPowerHighAlarm, bool ),
      ( rxPowerLowAlarm, bool ),
      ( rxPowerHighWarn, bool ),
      ( rxPowerLowWarn, bool ) );
};

/// The register bytes of a slot, in one dense page a device address: writing a byte is a store, and
/// a whole page can be decoded in place. Iterated in the order of addresses.
class XCVR_API Sff8472Registers {
 public:
   static constexpr uint32_t pageSize = 256;
   using key_type = uint16_t;
   using mapped_type = XcvrSff8472DomRegisterData;
   struct Entry {
      key_type first;
      mapped_type second;
   };

   struct Page {
      uint8_t device;
      uint16_t count = 0;                    // of the bytes held
      std::array<uint8_t, pageSize> bytes{}; // 0 where no byte is held
      std::array<uint8_t, pageSize> held{};  // 0xff where one is
   };

   class Iterator {
    public:
      Iterator( Sff8472Registers const & registers, size_t at )
         : registers_( registers ), at_( at ) {
         skip();
      }
      [[nodiscard]] Entry operator*() const {
         Page const & page = registers_.pages_[at_ / pageSize];
         auto const key = static_cast<key_type>( page.device * pageSize + at_ % pageSize );
         return { key, mapped_type( key, page.bytes[at_ % pageSize] ) };
      }
      Iterator & operator++() {
         ++at_;
         skip();
         return *this;
      }
      friend bool operator==( Iterator const & a, Iterator const & b ) { return a.at_ == b.at_; }

    private:
      void skip() {
         if ( at_ % pageSize == 0 || !registers_.pages_[at_ / pageSize].held[at_ % pageSize] ) {
            search();
         }
      }
      void search();

      Sff8472Registers const & registers_;
      size_t at_; // pages one after the other
   };

   [[nodiscard]] static key_type keyOf( mapped_type const & value ) { return value.address(); }

   [[nodiscard]] bool contains( key_type key ) const {
      Page const * found = page( deviceOf( key ) );
      return found && found->held[byteOf( key )];
   }
   [[nodiscard]] mapped_type at( key_type key ) const {
      Page const * found = page( deviceOf( key ) );
      return found && found->held[byteOf( key )] ? mapped_type( key, found->bytes[byteOf( key )] )
                                                 : mapped_type();
   }
   /// Whether that changed anything.
   bool store( mapped_type const & value ) {
      Page & home = pageIs( deviceOf( value.address() ) );
      uint8_t & byte = home.bytes[byteOf( value.address() )];
      uint8_t & held = home.held[byteOf( value.address() )];
      if ( held && byte == value.data() ) {
         return false;
      }
      home.count = static_cast<uint16_t>( home.count + ( held ? 0 : 1 ) );
      byte = value.data();
      held = 0xff;
      return true;
   }
   /// Whether there was one.
   bool erase( key_type key );

   [[nodiscard]] bool empty() const { return size() == 0; }
   [[nodiscard]] size_t size() const;
   [[nodiscard]] Iterator begin() const { return { *this, 0 }; }
   [[nodiscard]] Iterator end() const { return { *this, pages_.size() * pageSize }; }

   /// The bytes of a device address; null when none was ever written.
   [[nodiscard]] Page const * page( uint8_t device ) const {
      for ( Page const & candidate : pages_ ) {
         if ( candidate.device == device ) {
            return &candidate;
         }
      }
      return nullptr;
   }

 private:
   [[nodiscard]] static uint8_t deviceOf( key_type key ) {
      return static_cast<uint8_t>( key >> 8 );
   }
   [[nodiscard]] static uint8_t byteOf( key_type key ) { return static_cast<uint8_t>( key ); }
   [[nodiscard]] Page & pageIs( uint8_t device ) {
      Page const * found = page( device );
      return found ? const_cast<Page &>( *found ) : newPage( device );
   }
   [[gnu::cold]] Page & newPage( uint8_t device );

   std::vector<Page> pages_; // in the order of device addresses; one or two
};

/// Diagnostic settings of an SFP slot: memory contents that replace the module's own in all that
/// the status says, to see how the system takes a module that is not at hand.
class XCVR_API SfpDiagConfig : public Vel::Entity {
 public:
   /// What the activation key must hold.
   static constexpr uint32_t activationKey = diagActivationKey;

   explicit SfpDiagConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( SfpDiagConfig, Vel::Entity,
      ( Plain, overrideIdEepromContents, onOverrideIdEepromContents, XcvrSff8472IdEepromContents ),
      // The override takes effect only while this holds `activationKey`.
      ( Plain, overrideIdEepromContentsActivationKey, onOverrideIdEepromContentsActivationKey, uint32_t ) );
};

/// Configuration of an SFP slot.
class XCVR_API SfpConfig : public XcvrConfig {
 public:
   using XcvrConfig::XcvrConfig;
   VEL_ENTITY( SfpConfig, XcvrConfig,
      // One at most is expected; of several the first active one in name order counts.
      ( OrderedChildren, diagConfig, onDiagConfig, Vel::Name, SfpDiagConfig ),
      ( Plain, sfpSlotCapabilities, onSfpSlotCapabilities, SfpSlotCapabilities ) );
};

/// The configurations of a cell's SFP slots.
class XCVR_API SfpCellConfig : public Vel::Entity {
 public:
   explicit SfpCellConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( SfpCellConfig, Vel::Entity,
      ( Plain, generationId, onGenerationId, uint32_t ),
      ( Children, xcvrConfig, onXcvrConfig, Vel::Name, SfpConfig ) );
};

/// Status of an SFP slot: everything is decoded from the memory contents at the call.
///
/// A byte of page A2h is that of the diagnostic override while one is active; else the one in
/// `registerData`; else that of the contents' page A2h; else 0. Nothing fails: monitors that are
/// not valid are minus infinity.
class XCVR_API SfpNewStatus : public XcvrNewStatus {
 public:
   explicit SfpNewStatus( Vel::Name name )
      : XcvrNewStatus( std::move( name ), XcvrType::sfpPlus ) {}
   VEL_ENTITY( SfpNewStatus, XcvrNewStatus,
      // Contents as last read from the module.
      ( Plain, actualIdEepromContents, onActualIdEepromContents, XcvrSff8472IdEepromContents ),
      // Single bytes read by the driver.
      ( Records, registerData, onRegisterData, Sff8472Registers ),
      // Tuning written to the module.
      ( Plain, hwTuningConfig, onHwTuningConfig, HwTuningConfig ),
      ( Plain, sfpPhyProgramState, onSfpPhyProgramState, Xcvr1000BaseTProgramState ),
      ( Plain, sfpSlotCapabilities, onSfpSlotCapabilities, SfpSlotCapabilities ),
      ( Reference, xcvrConfig, onXcvrConfig, SfpConfig ),
      ( Reference, xgc, onXgc, Xgc ),
      // The driver has filled the contents.
      ( Plain, ready, onReady, bool ) );

   /// The contents that all below rests on: those of an active diagnostic override, else what was
   /// read from the module. Valid until the next write to either.
   [[nodiscard]] XcvrSff8472IdEepromContents const & sff8472IdEepromContents() const;

   [[nodiscard]] Capabilities capabilities() const override;
   [[nodiscard]] VendorInfo vendorInfo() const override;
   /// In 100 MBd.
   [[nodiscard]] uint8_t bitrate() const override;
   [[nodiscard]] MediaType mediaType() const override;
   [[nodiscard]] MediaType detectedMediaType() const override;
   [[nodiscard]] uint32_t laserWavelength() const override;
   [[nodiscard]] LaserWavelengthPrecision laserWavelengthPrecision() const override;
   /// The module is there, has monitors, and they were read after it came. The same for any lane.
   [[nodiscard]] bool domInfoValid( LaneId lane ) const override;
   [[nodiscard]] DomInfo domInfo( LaneId lane ) const override;
   [[nodiscard]] bool domThresholdValid() const override;
   /// The thresholds in the module's memory, valid or not. Minus infinity, no limit, without
   /// calibration and, on purpose, for the received power of an externally calibrated module.
   [[nodiscard]] DomThreshold domThreshold() const override;
   [[nodiscard]] DomCapabilities domCapabilities() const override;
   /// Two pages of 256 bytes, numbered 0 (A0h) and 1 (A2h).
   [[nodiscard]] EepromDescriptor idEepromInfo() const override;
   /// Stores page 0 (A0h) or 1 (A2h) in `actualIdEepromContents`; another is traced and changes
   /// nothing.
   void idEepromContentsIs( uint8_t page, Vel::String const & contents ) override;
   void updateLastValidTime( Vel::Seconds time ) override;
   /// Of a passive copper cable, from `attnTable` by "vendor name-part number" (with their
   /// padding), else from its length; 0 for all else.
   [[nodiscard]] Units::Decibels electricalPathAttenuation() const override;
   [[nodiscard]] uint16_t hwChannel() const override;
   [[nodiscard]] TuningCapabilities tuningCapabilities() const override;

   /// A 10G optical module that can run at 1G as well.
   [[nodiscard]] bool is1GConfigurable() const;
   /// Whether pins RS0 and RS1 are to select the high rate: for a 10G interface.
   [[nodiscard]] bool assertRateSelect0() const;
   [[nodiscard]] bool assertRateSelect1() const;
   /// All false while `domInfoValid` is false.
   [[nodiscard]] SfpStatusBits statusBits() const;
   /// All false while `domInfoValid` is false, and for a module that does not implement flags (A0h
   /// byte 93 bit 7).
   [[nodiscard]] SfpDomFlags domFlags() const;
   /// The operator's row for this module: of those whose texts, but for empty ones, are the
   /// module's (padding does not count), the one with the serial number, else the part number, else
   /// the vendor name. Null for none; among equals the first in name order.
   [[nodiscard]] Vel::Ptr<DomThresholdOverride const> domThresholdOverride() const;
   /// `domThreshold` with, while `domThresholdOverridden`, the optical powers of the operator's
   /// row.
   [[nodiscard]] DomThreshold domThresholdInForce() const;

   /// Empties the contents, of which nothing is known any more.
   void clearIdEepromContents();
   /// Puts `ituTuningConfig` into the terms of the module's registers, in `hwTuningConfig`: all 0
   /// for a frequency that is none of the module's, which then is not to be programmed.
   void updateHwTuningConfig();
   /// Resolves the tuning that `xgc` has under the slot's name, updates `ituTuningConfig`,
   /// `hwTuningConfig` and `resolvedTuningStatus`, and says whether the module is tuned otherwise:
   /// it stays so where `hwTuningConfig` is 0, a frequency that it does not have. A module that
   /// cannot be tuned at all is never pending, and nothing is updated.
   [[nodiscard]] bool isFreqTuningPending();
};

XCVR_API Vel::Ptr<SfpDiagConfig> sfpDiagConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<SfpConfig> sfpConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<SfpCellConfig> sfpCellConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<SfpNewStatus> sfpNewStatusFactory( Vel::Name name );

} // namespace Xcvr
