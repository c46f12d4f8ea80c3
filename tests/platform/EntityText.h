#pragma once

#include <Vel/Entity.h>

#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace XcvrTest {

/// The entries of a collection's text, "{1: 2, 3: 4}", in the order of their texts; another text whole.
inline std::set<std::string> entriesOf( std::string_view text ) {
   if ( !text.starts_with( '{' ) && !text.starts_with( '[' ) ) {
      return { std::string( text ) };
   }
   std::set<std::string> entries;
   std::string entry;
   int depth = 0;
   for ( char const c : text.substr( 1 ) ) {
      depth += ( c == '{' || c == '(' ) - ( c == '}' || c == ')' || c == ']' );
      if ( depth < 0 || ( depth == 0 && c == ',' ) ) {
         entries.insert( std::exchange( entry, {} ) );
      } else if ( c != ' ' || !entry.empty() ) {
         entry += c;
      }
   }
   return entries;
}

/// An entity with all that it owns, as text: what two of them must have in common to be copies.
inline std::string asText( Vel::Entity const & entity ) {
   std::string text( entity.velModel().typeName );
   text += " " + std::string( entity.name() );
   for ( auto const * model = &entity.velModel(); model->base; model = model->base ) {
      for ( Vel::AttrInfo const & row : *model ) {
         if ( row.kind == Vel::AttrKind::derived ) {
            continue;
         }
         text += "\n" + std::string( row.name );
         for ( std::string const & entry : entriesOf( row.text( entity ) ) ) {
            if ( row.child && entry.starts_with( '\'' ) ) { // the full name of a child
               std::string_view const path( entry.data() + 1, entry.size() - 2 );
               auto const child =
                  entity.entity( Vel::Name( path.substr( entity.fullName().size() + 1 ) ) );
               text += child ? " " + asText( *child ) : " no child";
            } else {
               text += " " + entry;
            }
         }
      }
   }
   return text;
}

} // namespace XcvrTest
