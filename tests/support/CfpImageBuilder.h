#pragma once

#include <Xcvr/XcvrCfp2.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace XcvrTest {

/// Builds the register tables of a CFP2, CFPx or CFP2-DCO module from registers and bits named as in
/// the register table; a name that it lacks, or that the module lacks, throws. A table is there, whole
/// and of zeros but for blank texts, once something is written to it; the first five identification
/// tables always are. Checksums come out right.
class CfpImageBuilder {
 public:
   explicit CfpImageBuilder( Xcvr::CfpMsaMisIdentifier identifier = Xcvr::identifierCfp2 );

   /// A number as stored, in the register of a lane.
   CfpImageBuilder & raw( std::string_view name, uint32_t number, uint8_t lane = 0 );
   /// A number in the register's unit.
   CfpImageBuilder & value( std::string_view name, double value, uint8_t lane = 0 );
   CfpImageBuilder & text( std::string_view name, std::string_view text );
   CfpImageBuilder & bit( std::string_view name, std::string_view bit );
   /// A register that has no name.
   CfpImageBuilder & at( Xcvr::CfpMsaMisTableId table, uint16_t address, uint16_t number );
   CfpImageBuilder & missing( Xcvr::CfpMsaMisTableId table ) {
      tables_.erase( table );
      return *this;
   }

   /// The registers of a table, one after the other, those of words high byte first; empty for a table
   /// that is not there.
   [[nodiscard]] std::string image( Xcvr::CfpMsaMisTableId table ) const;
   /// The same with words in the order of the host, as the model holds them.
   [[nodiscard]] Vel::String bytes( Xcvr::CfpMsaMisTableId table ) const;
   /// Writes all tables.
   void writeTo( Xcvr::CfpMsaMisIdEepromContents & contents ) const;
   [[nodiscard]] Vel::Ptr<Xcvr::CfpMsaMisIdEepromContents> contents() const;

 private:
   using Registers = std::vector<uint16_t>;

   [[nodiscard]] Xcvr::CfpRegister const & registerNamed( std::string_view name ) const;
   [[nodiscard]] Registers & table( Xcvr::CfpMsaMisTableId id );
   [[nodiscard]] uint16_t & at( Xcvr::CfpRegister const & row, unsigned further );
   [[nodiscard]] Registers summedUp( Xcvr::CfpMsaMisTableId id ) const;

   std::map<Xcvr::CfpMsaMisTableId, Registers> tables_;
   Xcvr::CfpModules module_;
};

} // namespace XcvrTest
