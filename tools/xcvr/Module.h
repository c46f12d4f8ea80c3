#pragma once

#include "tools/xcvr/ModuleImage.h"
#include "tools/xcvr/Report.h"

#include <Xcvr/XcvrMediaTypeRules.h>
#include <Xcvr/XcvrMemoryMap.h>
#include <Xcvr/XcvrStatus.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A module as the commands see it. They ask the status entity of its slot for all that every family
// answers, and the class below for what the families have each in their own way. A new family is a
// subclass and a row in the table of Module.cpp.
namespace XcvrTool {

/// One checksum of a module's memory.
struct Checksum {
   std::string_view name;  // in JSON: "ccBase"
   std::string_view label; // for people: "base"
   std::string_view page;
   std::optional<unsigned> stored; // none: the image ends in front of it
   unsigned computed;
   bool valid;
};

class Module;

/// One thing that can be wrong with a module.
struct Check {
   std::string_view id; // stays the same for ever: people filter by it
   /// What is wrong, each a sentence without its full stop; nothing if all is well.
   std::vector<std::string> ( *find )( Module const & module );
   std::string_view advice; // a sentence
};

/// How a page of an image is read, byte by byte.
struct PageLayout {
   std::size_t firstAddress = 0;    // of the page's first byte
   std::size_t bytesPerAddress = 1; // of a table of registers of two bytes 2
   /// The fields that mean something in this module, in the order of addresses, which count from the
   /// page's first byte.
   std::vector<Xcvr::MemoryField> fields = {};
   std::string remark = {}; // to the page's heading
};

/// What is the same for every module of a family.
struct FamilyTables {
   std::span<Xcvr::MediaTypeRule const> mediaTypeRules;
   std::span<Check const> checks; // of what can be wrong in this family only
};

class Module {
 public:
   virtual ~Module() = default;

   [[nodiscard]] ModuleImage const & image() const { return image_; }
   [[nodiscard]] FamilyTables const & family() const { return family_; }
   /// The status of a slot that holds the module, fed as an agent would: every reading that the image
   /// has was taken after the module came.
   [[nodiscard]] virtual Xcvr::XcvrNewStatus const & status() const = 0;

   // `show`: facts by topic, between which those of the status are told.

   virtual void form( Report & report ) const = 0;      // identifier, connector
   virtual void origin( Report & report ) const = 0;    // of the maker, beside vendorInfo
   virtual void medium( Report & report ) const = 0;    // compliance, rate, reach, options
   virtual void features( Report & report ) const = 0;  // diagnostics, revision
   virtual void condition( Report & report ) const = 0; // status bits, alarms

   // Monitors

   /// A bit for each lane whose monitors mean nothing, as the module has no such lane.
   [[nodiscard]] virtual std::uint32_t missingLanes() const { return 0; }
   /// The limits that the module has, should the system take others on purpose.
   [[nodiscard]] virtual Xcvr::DomThreshold ownThreshold() const { return status().domThreshold(); }

   // `explain`

   [[nodiscard]] virtual Xcvr::MediaTypeDecision mediaTypeDecision() const = 0;
   /// Numbers as the rules read them, whatever the facts make of the bytes.
   virtual void ruleInputs( Report & report ) const = 0;

   // `hexdump`

   [[nodiscard]] virtual PageLayout layoutOf( std::string_view page ) const = 0;
   /// The value of a field of a page's layout as people read it.
   [[nodiscard]] virtual std::string valueOf( Xcvr::PageView bytes,
                                              Xcvr::MemoryField const & field ) const;

   // `check`

   /// `show` has them too.
   [[nodiscard]] virtual std::vector<Checksum> checksums() const = 0;
   /// The image holds what the media type is told from.
   [[nodiscard]] virtual bool isIdentified() const { return true; }
   /// SFF-8024.
   [[nodiscard]] virtual std::uint8_t identifier() const = 0;
   /// The module says that it has monitors. (Whether the image has them, the status knows.)
   [[nodiscard]] virtual bool domAdvertised() const = 0;
   /// What the image must hold for them: "page a2h up to byte 117".
   [[nodiscard]] virtual std::string domPlace() const = 0;

 protected:
   Module( ModuleImage image, FamilyTables const & family )
      : image_( std::move( image ) ), family_( family ) {}

   /// The bytes of a page; none if the image lacks it.
   [[nodiscard]] std::string_view page( std::string_view label ) const;

 private:
   ModuleImage image_;
   FamilyTables family_;
};

/// A module in a slot of its family's type. The constructors of the families do the rest of what an
/// agent does with a slot whose module has this memory.
template <typename Status>
class ModuleOf : public Module {
 public:
   [[nodiscard]] Status const & status() const override { return *status_; }

 protected:
   static constexpr Vel::Seconds readTime = 1; // later than the module came, at 0

   ModuleOf( ModuleImage image, FamilyTables const & family, Vel::Ptr<Status> status )
      : Module( std::move( image ), family ), status_( std::move( status ) ) {
      status_->presenceIs( Xcvr::xcvrPresent );
   }

   Vel::Ptr<Status> const status_;
};

/// The names of the families that are decoded, and the one of that name.
[[nodiscard]] std::vector<std::string> familyNames();
[[nodiscard]] XcvrType familyOfName( std::string_view name );

/// The module in an image. Throws ImageError if its family is not decoded.
[[nodiscard]] std::unique_ptr<Module> moduleOf( ModuleImage image );

} // namespace XcvrTool
