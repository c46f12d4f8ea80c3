#pragma once

#include <Vel/Trace.h>

#include <string>
#include <utility>
#include <vector>

/// Keeps the trace records of its lifetime, of one source or, as "*", of all; trace is off before
/// and after it.
class TraceCapture {
 public:
   struct Record {
      std::string source;
      int level;
      int line;
      std::string operation;
      std::string text;
   };

   explicit TraceCapture( std::string_view source = "*", int level = 9 ) {
      Vel::traceSinkIs( [this]( Vel::TraceRecord const & record ) {
         records_.push_back( { std::string( record.source ), record.level, record.line,
                               std::string( record.operation ), std::string( record.text ) } );
      } );
      Vel::traceLevelIs( source, level );
   }
   TraceCapture( TraceCapture const & ) = delete;
   TraceCapture & operator=( TraceCapture const & ) = delete;
   ~TraceCapture() {
      Vel::traceLevelIs( "*", 0 );
      Vel::traceSinkIs( {} );
   }

   [[nodiscard]] std::vector<Record> takeRecords() { return std::exchange( records_, {} ); }
   /// "operation: text" of every record but those that open a scope.
   [[nodiscard]] std::vector<std::string> takeNotes() {
      std::vector<std::string> notes;
      for ( Record const & record : takeRecords() ) {
         if ( !record.text.empty() ) {
            notes.push_back( record.operation + ": " + record.text );
         }
      }
      return notes;
   }
   /// Those of the records so far that do not just open a scope.
   [[nodiscard]] std::vector<std::string> operations() const {
      std::vector<std::string> result;
      for ( Record const & record : records_ ) {
         if ( !record.text.empty() ) {
            result.push_back( record.operation );
         }
      }
      return result;
   }

 private:
   std::vector<Record> records_;
};
