#pragma once

#include <Vel/Bounded.h>
#include <Vel/Ptr.h>
#include <Vel/String.h>
#include <Xcvr/HalOsfp.h>
#include <Xcvr/XcvrApi.h>

#include <cstdint>

namespace Xcvr {

/// The signal tuning of one lane: a bit and four codes of 0 to 15.
class XCVR_API OsfpTuningParamValue {
   VEL_VALUE( OsfpTuningParamValue,
      ( txInputAdaptiveEqEnable, uint8_t ),
      ( txInputEqualization, uint8_t ),
      ( rxOutputPostEmphasis, uint8_t ),
      ( rxOutputPreEmphasis, uint8_t ),
      ( rxOutputAmplitude, uint8_t ) );
};

/// An editing view over a control set of a CMIS module: the application and the signal tuning of each
/// of eight lanes, as 29 bytes laid out like page 11h bytes 206 to 234. The caller reads the image from
/// the module and writes it back; nothing here does.
///
/// A setter says whether the image has changed. A code that its field cannot hold throws
/// Vel::RangeException, and nothing is written. Of an image that is too short, what is missing reads
/// as 0 and writing it is fatal.
class XCVR_API OsfpControlSet : public Vel::PtrInterface {
 public:
   static constexpr uint8_t imageSize = 29;

   explicit OsfpControlSet( Vel::String image ) : image_( std::move( image ) ) {}

   [[nodiscard]] Vel::String const & image() const { return image_; }
   /// A bit for each lane whose settings have changed and are to be applied.
   [[nodiscard]] uint8_t applyControl() const { return applyControl_.value(); }

   /// Four bytes, the first the least significant; a byte of 0x80 or more sets all bits above its own.
   /// That sign extension is intended, and so is that writing does not undo it: see tuningU4Is.
   [[nodiscard]] uint32_t getU32FromControlSetString( uint8_t offset ) const;
   /// Stores plain bytes, the least significant first.
   bool setU32ToControlSetString( uint8_t offset, uint32_t value );

   /// A lane's field of a register of the image (`addr` from 0 on): four bits of four bytes, or a bit
   /// of one byte. Four bytes are read with their sign extension and written as read, so that where a
   /// byte below has its highest bit set, setting one lane sets the fields of lanes above it to 15;
   /// whether that changed the image is told from what was read, not from what was stored.
   bool tuningU4Is( OsfpRegAddr const & reg, OsfpLane lane, uint8_t code );
   bool tuningU1Is( OsfpRegAddr const & reg, OsfpLane lane, Vel::U1 bit );

   bool txInputAdaptiveEqEnableIs( OsfpLane lane, Vel::U1 enable );
   bool txInputEqualizationIs( OsfpLane lane, uint8_t code );
   bool rxOutputPreEmphasisIs( OsfpLane lane, uint8_t code );
   bool rxOutputPostEmphasisIs( OsfpLane lane, uint8_t code );
   bool rxOutputAmplitudeIs( OsfpLane lane, uint8_t code );

   /// The application-select byte: application code in bits 7-4, data-path code in bits 3-1, explicit
   /// tuning control (the module takes its tuning from here) in bit 0.
   [[nodiscard]] uint8_t laneApSel( OsfpLane lane ) const;
   bool laneApSelIs( OsfpLane lane, uint8_t apSel );
   bool applicationCodeIs( OsfpLane lane, Vel::U4 code );
   bool dataPathCodeIs( OsfpLane lane, Vel::U3 code );
   bool explicitTuningControlIs( OsfpLane lane, Vel::U1 on );

   /// A lane's bit of `applyControl`, and all of it; whether that has changed.
   bool applyTuningIs( OsfpLane lane, Vel::U1 apply );
   bool applyControlIs( uint8_t lanes );

   /// Applies a whole tuning: sets its values and explicit tuning control, and the lane's bit of
   /// `applyControl` to whether a value changed. That is what it returns: explicit tuning control,
   /// and a bit of `applyControl` that goes, count for nothing.
   bool tuningIs( OsfpLane lane, OsfpTuningParamValue const & tuning );
   /// A lane's tuning as stored.
   [[nodiscard]] OsfpTuningParamValue tuning( OsfpLane lane ) const;

   /// The eight application-select bytes with explicit tuning control cleared; nothing changes.
   [[nodiscard]] Vel::String apSelString() const;

 private:
   [[nodiscard]] uint8_t byte( unsigned offset ) const {
      return static_cast<uint8_t>( image_[offset] );
   }
   bool byteIs( uint8_t offset, uint8_t value );

   Vel::String image_;
   OsfpLaneBitmaskCtrlReg8 applyControl_;
};

XCVR_API Vel::Ptr<OsfpControlSet> osfpControlSetFactory( Vel::String const & image );

} // namespace Xcvr
