#pragma once

#include "SfpStatus.pb.h"

#include <Xcvr/XcvrSfpStatus.h>

#include <string>
#include <type_traits>

// From a status to the message of SfpStatus.proto and back. The tables have a row a field, its name in
// both: of a number, a truth or a code, or of what has a size or fields of its own.

#define CONDITION_STAT_FIELDS( NUMBER, PART )                                                      \
   NUMBER( active, active )                                                                        \
   NUMBER( count, count )                                                                          \
   NUMBER( lastChange, last_change )

#define XCVR_EVENT_STATS_FIELDS( NUMBER, PART )                                                    \
   NUMBER( presence, presence )                                                                    \
   NUMBER( presenceChanges, presence_changes )                                                     \
   NUMBER( lastPresenceChange, last_presence_change )                                              \
   NUMBER( resetCount, reset_count )                                                               \
   NUMBER( lastReset, last_reset )                                                                 \
   NUMBER( interruptCount, interrupt_count )                                                       \
   NUMBER( lastInterrupt, last_interrupt )                                                         \
   NUMBER( badEepromChecksumEvents, bad_eeprom_checksum_events )                                   \
   NUMBER( lastBadEepromChecksumEvent, last_bad_eeprom_checksum_event )                            \
   NUMBER( smbusFailCount, smbus_fail_count )                                                      \
   NUMBER( lastSmbusFail, last_smbus_fail )

#define LANE_EVENT_STATS_FIELDS( NUMBER, PART )                                                    \
   NUMBER( currentRxLosState, current_rx_los_state )                                               \
   NUMBER( rxLosEvents, rx_los_events )                                                            \
   NUMBER( lastRxLosEvent, last_rx_los_event )                                                     \
   NUMBER( rxLosEventsSinceInsertion, rx_los_events_since_insertion )                              \
   NUMBER( currentTxFaultState, current_tx_fault_state )                                           \
   NUMBER( txFaultEvents, tx_fault_events )                                                        \
   NUMBER( lastTxFaultEvent, last_tx_fault_event )                                                 \
   NUMBER( txFaultEventsSinceInsertion, tx_fault_events_since_insertion )                          \
   PART( txLos, tx_los )                                                                           \
   PART( txCdrLol, tx_cdr_lol )                                                                    \
   PART( txAdaptiveInputEqFault, tx_adaptive_input_eq_fault )                                      \
   PART( txPowerHiAlarm, tx_power_hi_alarm )                                                       \
   PART( txPowerLoAlarm, tx_power_lo_alarm )                                                       \
   PART( txPowerHiWarn, tx_power_hi_warn )                                                         \
   PART( txPowerLoWarn, tx_power_lo_warn )                                                         \
   PART( txBiasHiAlarm, tx_bias_hi_alarm )                                                         \
   PART( txBiasLoAlarm, tx_bias_lo_alarm )                                                         \
   PART( txBiasHiWarn, tx_bias_hi_warn )                                                           \
   PART( txBiasLoWarn, tx_bias_lo_warn )                                                           \
   PART( rxCdrLol, rx_cdr_lol )                                                                    \
   PART( rxPowerHiAlarm, rx_power_hi_alarm )                                                       \
   PART( rxPowerLoAlarm, rx_power_lo_alarm )                                                       \
   PART( rxPowerHiWarn, rx_power_hi_warn )                                                         \
   PART( rxPowerLoWarn, rx_power_lo_warn )

#define XCVR_STATE_FIELDS( NUMBER, PART )                                                          \
   NUMBER( enabled, enabled )                                                                      \
   NUMBER( reason, reason )

#define XCVR_MANAGER_CAPABILITIES_FIELDS( NUMBER, PART )                                           \
   NUMBER( domDynamicValues, dom_dynamic_values )                                                  \
   NUMBER( domThresholds, dom_thresholds )

#define TUNING_PARAM_CAPABILITIES_FIELDS( NUMBER, PART )                                           \
   NUMBER( rxAmplitudeSupported, rx_amplitude_supported )                                          \
   NUMBER( rxPreEmphasisSupported, rx_pre_emphasis_supported )                                     \
   NUMBER( txInputEqualizationSupported, tx_input_equalization_supported )

#define ITU_TUNING_CONFIG_FIELDS( NUMBER, PART )                                                   \
   NUMBER( channel, channel )                                                                      \
   NUMBER( grid, grid )                                                                            \
   NUMBER( frequency, frequency )                                                                  \
   NUMBER( laserEnabled, laser_enabled )

#define GRID_SPACING_CAPABILITIES_FIELDS( NUMBER, PART )                                           \
   NUMBER( gridSpacing100000M, grid_spacing100000_m )                                              \
   NUMBER( gridSpacing50000M, grid_spacing50000_m )                                                \
   NUMBER( gridSpacing33000M, grid_spacing33000_m )                                                \
   NUMBER( gridSpacing25000M, grid_spacing25000_m )                                                \
   NUMBER( gridSpacing12500M, grid_spacing12500_m )                                                \
   NUMBER( gridSpacing6250M, grid_spacing6250_m )

#define RESOLVED_TUNING_STATUS_FIELDS( NUMBER, PART )                                              \
   NUMBER( configuredChannel, configured_channel )                                                 \
   NUMBER( configuredGrid, configured_grid )                                                       \
   NUMBER( configuredFrequency, configured_frequency )                                             \
   NUMBER( computedFrequency, computed_frequency )                                                 \
   NUMBER( computedWavelength, computed_wavelength )                                               \
   NUMBER( operationalChannel, operational_channel )                                               \
   NUMBER( operationalGrid, operational_grid )                                                     \
   NUMBER( operationalFrequency, operational_frequency )                                           \
   NUMBER( operationalWavelength, operational_wavelength )                                         \
   PART( gridSpacingCapabilities, grid_spacing_capabilities )

#define HW_TUNING_CONFIG_FIELDS( NUMBER, PART )                                                    \
   NUMBER( hwChannel, hw_channel )                                                                 \
   NUMBER( hwGrid, hw_grid )                                                                       \
   NUMBER( hwFineTuneFreq, hw_fine_tune_freq )

#define SFP_SLOT_CAPABILITIES_FIELDS( NUMBER, PART )                                               \
   NUMBER( agilePort, agile_port )                                                                 \
   NUMBER( maxBlockReadSize, max_block_read_size )

#define XCVR_SFF8472_ID_EEPROM_CONTENTS_FIELDS( NUMBER, PART )                                     \
   PART( buf, buf )                                                                                \
   PART( eepromPageA2Data, eeprom_page_a2_data )                                                   \
   NUMBER( lastValidData, last_valid_data )

#define XCVR_SFF8472_DOM_REGISTER_DATA_FIELDS( NUMBER, PART )                                      \
   NUMBER( address, address )                                                                      \
   NUMBER( data, data )

#define LANE_STATUS_FIELDS( NUMBER, PART )                                                         \
   NUMBER( txFaultPresent, tx_fault_present )                                                      \
   NUMBER( localFaultPresent, local_fault_present )                                                \
   NUMBER( txLos, tx_los )                                                                         \
   NUMBER( txCdrLol, tx_cdr_lol )                                                                  \
   NUMBER( txAdaptiveInputEqFault, tx_adaptive_input_eq_fault )                                    \
   NUMBER( txPowerHiAlarm, tx_power_hi_alarm )                                                     \
   NUMBER( txPowerLoAlarm, tx_power_lo_alarm )                                                     \
   NUMBER( txPowerHiWarn, tx_power_hi_warn )                                                       \
   NUMBER( txPowerLoWarn, tx_power_lo_warn )                                                       \
   NUMBER( txBiasHiAlarm, tx_bias_hi_alarm )                                                       \
   NUMBER( txBiasLoAlarm, tx_bias_lo_alarm )                                                       \
   NUMBER( txBiasHiWarn, tx_bias_hi_warn )                                                         \
   NUMBER( txBiasLoWarn, tx_bias_lo_warn )                                                         \
   NUMBER( rxCdrLol, rx_cdr_lol )                                                                  \
   NUMBER( rxPowerHiAlarm, rx_power_hi_alarm )                                                     \
   NUMBER( rxPowerLoAlarm, rx_power_lo_alarm )                                                     \
   NUMBER( rxPowerHiWarn, rx_power_hi_warn )                                                       \
   NUMBER( rxPowerLoWarn, rx_power_lo_warn )

#define XCVR_EVENT_STATS_ENT_FIELDS( NUMBER, PART )                                                \
   PART( voltageHiAlarm, voltage_hi_alarm )                                                        \
   PART( voltageLoAlarm, voltage_lo_alarm )                                                        \
   PART( voltageHiWarn, voltage_hi_warn )                                                          \
   PART( voltageLoWarn, voltage_lo_warn )                                                          \
   PART( tempHiAlarm, temp_hi_alarm )                                                              \
   PART( tempLoAlarm, temp_lo_alarm )                                                              \
   PART( tempHiWarn, temp_hi_warn )                                                                \
   PART( tempLoWarn, temp_lo_warn )

#define SFP_NEW_STATUS_FIELDS( NUMBER, PART )                                                      \
   NUMBER( overrideMediaType, override_media_type )                                                \
   NUMBER( swappability, swappability )                                                            \
   NUMBER( presence, presence )                                                                    \
   NUMBER( presenceChanges, presence_changes )                                                     \
   NUMBER( lastPresenceChange, last_presence_change )                                              \
   NUMBER( warm, warm )                                                                            \
   NUMBER( idEepromValid, id_eeprom_valid )                                                        \
   NUMBER( generationId, generation_id )                                                           \
   NUMBER( resetCountValid, reset_count_valid )                                                    \
   NUMBER( interruptCountValid, interrupt_count_valid )                                            \
   NUMBER( smbusFailCountValid, smbus_fail_count_valid )                                           \
   NUMBER( eventStatsValid, event_stats_valid )                                                    \
   PART( xcvrStats, xcvr_stats )                                                                   \
   PART( xcvrState, xcvr_state )                                                                   \
   NUMBER( xcvrStateChanges, xcvr_state_changes )                                                  \
   PART( xcvrMgrCapabilities, xcvr_mgr_capabilities )                                              \
   NUMBER( lastDomUpdateTime, last_dom_update_time )                                               \
   NUMBER( lastEnhancedDomUpdateTime, last_enhanced_dom_update_time )                              \
   NUMBER( lastDomThresholdsUpdateTime, last_dom_thresholds_update_time )                          \
   NUMBER( lastEnhancedDomThresholdsUpdateTime, last_enhanced_dom_thresholds_update_time )         \
   NUMBER( lastEnhancedDomPMPeriodUpdateTime, last_enhanced_dom_pm_period_update_time )            \
   NUMBER( domThresholdOverridden, dom_threshold_overridden )                                      \
   NUMBER( enhancedDomValuesAvailable, enhanced_dom_values_available )                             \
   PART( xcvrTuningParamCapabilities, xcvr_tuning_param_capabilities )                             \
   NUMBER( channel, channel )                                                                      \
   NUMBER( grid, grid )                                                                            \
   NUMBER( frequency, frequency )                                                                  \
   PART( ituTuningConfig, itu_tuning_config )                                                      \
   PART( resolvedTuningStatus, resolved_tuning_status )                                            \
   NUMBER( idEepromDumpTimestamp, id_eeprom_dump_timestamp )                                       \
   NUMBER( xcvrOverheating, xcvr_overheating )                                                     \
   NUMBER( domNonzeroTxPower, dom_nonzero_tx_power )                                               \
   NUMBER( swizzled, swizzled )                                                                    \
   NUMBER( qsa28, qsa28 )                                                                          \
   NUMBER( adapterPresent, adapter_present )                                                       \
   NUMBER( inAdapter, in_adapter )                                                                 \
   NUMBER( unresponsiveToSmbus, unresponsive_to_smbus )                                            \
   NUMBER( fruGenerationId, fru_generation_id )                                                    \
   PART( actualIdEepromContents, actual_id_eeprom_contents )                                       \
   PART( hwTuningConfig, hw_tuning_config )                                                        \
   NUMBER( sfpPhyProgramState, sfp_phy_program_state )                                             \
   PART( sfpSlotCapabilities, sfp_slot_capabilities )                                              \
   NUMBER( ready, ready )

namespace Bench {

inline void toProto( Vel::String const & from, std::string & to ) {
   to.assign( from.data(), from.size() );
}
inline void fromProto( std::string const & from, Vel::String & to ) {
   to = Vel::String( std::string_view( from ) );
}

#define BENCH_NUMBER_TO( field, name )                                                             \
   to.set_##name( static_cast<std::remove_cvref_t<decltype( to.name() )>>( from.field() ) );
#define BENCH_PART_TO( field, name ) toProto( from.field(), *to.mutable_##name() );
#define BENCH_NUMBER_FROM( field, name )                                                           \
   to.field##Is( static_cast<std::remove_cvref_t<decltype( to.field() )>>( from.name() ) );
#define BENCH_PART_FROM( field, name )                                                             \
   {                                                                                               \
      std::remove_cvref_t<decltype( to.field() )> part;                                            \
      fromProto( from.name(), part );                                                              \
      to.field##Is( part );                                                                        \
   }
#define BENCH_BOTH_WAYS( space, Type, FIELDS )                                                     \
   inline void toProto( space::Type const & from, StatusProto::Type & to ) {                       \
      FIELDS( BENCH_NUMBER_TO, BENCH_PART_TO )                                                     \
   }                                                                                               \
   inline void fromProto( StatusProto::Type const & from, space::Type & to ) {                     \
      FIELDS( BENCH_NUMBER_FROM, BENCH_PART_FROM )                                                 \
   }

BENCH_BOTH_WAYS( Keel, ConditionStat, CONDITION_STAT_FIELDS )
BENCH_BOTH_WAYS( Xcvr, XcvrEventStats, XCVR_EVENT_STATS_FIELDS )
BENCH_BOTH_WAYS( Xcvr, LaneEventStats, LANE_EVENT_STATS_FIELDS )
BENCH_BOTH_WAYS( Xcvr, XcvrState, XCVR_STATE_FIELDS )
BENCH_BOTH_WAYS( Xcvr, XcvrManagerCapabilities, XCVR_MANAGER_CAPABILITIES_FIELDS )
BENCH_BOTH_WAYS( Xcvr, TuningParamCapabilities, TUNING_PARAM_CAPABILITIES_FIELDS )
BENCH_BOTH_WAYS( Xcvr, ItuTuningConfig, ITU_TUNING_CONFIG_FIELDS )
BENCH_BOTH_WAYS( Xcvr, GridSpacingCapabilities, GRID_SPACING_CAPABILITIES_FIELDS )
BENCH_BOTH_WAYS( Xcvr, ResolvedTuningStatus, RESOLVED_TUNING_STATUS_FIELDS )
BENCH_BOTH_WAYS( Xcvr, HwTuningConfig, HW_TUNING_CONFIG_FIELDS )
BENCH_BOTH_WAYS( Xcvr, SfpSlotCapabilities, SFP_SLOT_CAPABILITIES_FIELDS )
BENCH_BOTH_WAYS( Xcvr, XcvrSff8472IdEepromContents, XCVR_SFF8472_ID_EEPROM_CONTENTS_FIELDS )
BENCH_BOTH_WAYS( Xcvr, XcvrSff8472DomRegisterData, XCVR_SFF8472_DOM_REGISTER_DATA_FIELDS )
BENCH_BOTH_WAYS( Xcvr, LaneStatus, LANE_STATUS_FIELDS )
BENCH_BOTH_WAYS( Xcvr, XcvrEventStatsEnt, XCVR_EVENT_STATS_ENT_FIELDS )

/// The whole of a status that points nowhere.
inline void toProto( Xcvr::SfpNewStatus const & from, StatusProto::SfpNewStatus & to ) {
   to.set_xcvr_type( static_cast<uint32_t>( from.xcvrType() ) );
   SFP_NEW_STATUS_FIELDS( BENCH_NUMBER_TO, BENCH_PART_TO )
   if ( auto const stats = from.xcvrStatsEnt() ) {
      toProto( *stats, *to.mutable_xcvr_stats_ent() );
   }
   for ( auto const & [lane, stats] : from.laneStatsMap() ) {
      toProto( stats, ( *to.mutable_lane_stats() )[lane] );
   }
   for ( auto const & [lane, status] : from.laneStatusMap() ) {
      StatusProto::LaneStatus & added = *to.add_lane_status();
      added.set_lane( lane.value() );
      toProto( *status, added );
   }
   for ( auto const & [index, address] : from.enhancedDomMappingMap() ) {
      ( *to.mutable_enhanced_dom_mapping() )[index] = address;
   }
   for ( auto const & [page, valid] : from.idEepromChecksumValidMap() ) {
      ( *to.mutable_id_eeprom_checksum_valid() )[page] = valid;
   }
   for ( auto const & [address, data] : from.registerDataMap() ) {
      toProto( data, *to.add_register_data() );
   }
}

/// Nothing that the message lacks is taken out: what the library does besides.
inline void fromProto( StatusProto::SfpNewStatus const & from, Xcvr::SfpNewStatus & to ) {
   SFP_NEW_STATUS_FIELDS( BENCH_NUMBER_FROM, BENCH_PART_FROM )
   if ( from.has_xcvr_stats_ent() ) {
      fromProto( from.xcvr_stats_ent(), *to.xcvrStatsEntIs() );
   }
   for ( auto const & [lane, stats] : from.lane_stats() ) {
      Xcvr::LaneEventStats value;
      fromProto( stats, value );
      to.laneStatsIs( static_cast<uint8_t>( lane ), value );
   }
   for ( StatusProto::LaneStatus const & lane : from.lane_status() ) {
      fromProto( lane, *to.laneStatusIs( Xcvr::LaneId( static_cast<uint8_t>( lane.lane() ) ) ) );
   }
   for ( auto const & [index, address] : from.enhanced_dom_mapping() ) {
      to.enhancedDomMappingIs( index, static_cast<uint16_t>( address ) );
   }
   for ( auto const & [page, valid] : from.id_eeprom_checksum_valid() ) {
      to.idEepromChecksumValidIs( static_cast<uint8_t>( page ), valid );
   }
   for ( StatusProto::XcvrSff8472DomRegisterData const & data : from.register_data() ) {
      Xcvr::XcvrSff8472DomRegisterData value;
      fromProto( data, value );
      to.registerDataIs( value );
   }
}

} // namespace Bench
