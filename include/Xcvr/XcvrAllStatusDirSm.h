#pragma once

#include <Vel/Dir.h>
#include <Vel/Entity.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrDirs.h>

#include <map>
#include <memory>

// Merging the status directories of all slices, and that of the fixed transceivers, into one.
//
// An agent's statuses are published as a whole while the generation that it reports is that of its
// configuration, and withdrawn as a whole otherwise. docs/aggregation.md shows it as a picture.
namespace Xcvr {

class AllStatusDirSm;
class XcvrAllStatusDirSingleton;

/// Publishes the statuses of one directory, as a whole or not at all, and knows what it has published.
/// Whoever is told may start another handshake, which then has the last word. Traces are under the
/// name of the reactor's operation.
class XCVR_API StatusPublisher {
 public:
   /// `kind` is "fixed" or "sliced".
   StatusPublisher( char const * kind, Vel::Ptr<AllNewStatusDir> to )
      : kind_( kind ), to_( std::move( to ) ) {}

   void publish( Vel::Ptr<Vel::Dir> from, char const * operation );
   void withdraw( char const * operation );
   /// An entry of the directory has come, gone (null) or become another one: what is not any more what
   /// was published is withdrawn.
   void entryIs( Vel::Name const & name, Vel::Ptr<Vel::Entity> const & entry,
                 char const * operation );

   [[nodiscard]] Vel::Ptr<AllNewStatusDir> const & to() const { return to_; }
   [[nodiscard]] bool has( Vel::Name const & name ) const {
      return names_.find( name ) != names_.end();
   }
   [[nodiscard]] std::size_t count() const { return names_.size(); }
   void nameIs( Vel::Name const & name, bool published );
   void clear() { names_.clear(); }

 private:
   void withdraw( Vel::Name const & name, char const * operation );
   void traceName( char const * operation, char const * what, Vel::Name const & name ) const;

   char const * kind_;
   Vel::Ptr<AllNewStatusDir> to_;
   Vel::HashMap<Vel::Name, bool> names_;
   uint64_t handshakes_ = 0;
};

/// The reactor for one slice.
class XCVR_API SliceStatusSm : public Vel::PtrInterface {
 public:
   SliceStatusSm( AllStatusDirSm & top, Vel::String sliceId, Vel::Ptr<XcvrSliceStatus> agentStatus,
                  Vel::Ptr<Vel::Dir> xcvrStatusDir, Vel::Ptr<AllNewStatusDir> allStatusDir );
   ~SliceStatusSm() override;

   [[nodiscard]] Vel::String const & sliceId() const { return sliceId_; }
   [[nodiscard]] Vel::Ptr<XcvrSliceStatus> const & agentStatus() const { return agentStatus_; }
   /// The slice's status entities.
   [[nodiscard]] Vel::Ptr<Vel::Dir> const & xcvrStatusDir() const { return xcvrStatusDir_; }
   /// The slice's configuration, as of the last handshake; null for none.
   [[nodiscard]] Vel::Ptr<AllConfigDir> const & sliceConfig() const { return sliceConfig_; }
   void sliceConfigIs( Vel::Ptr<AllConfigDir> const & config );
   [[nodiscard]] bool initialized() const { return initialized_; }
   void initializedIs( bool initialized ) { initialized_ = initialized; }
   /// The names that this slice has published.
   [[nodiscard]] bool sliceXcvrs( Vel::Name const & name ) const { return published_.has( name ); }
   [[nodiscard]] std::size_t sliceXcvrsCount() const { return published_.count(); }
   void sliceXcvrsIs( Vel::Name const & name, bool published ) {
      published_.nameIs( name, published );
   }
   void sliceXcvrsDelAll() { published_.clear(); }

   void handleInitialized();
   /// The handshake: publishes or withdraws all of the slice.
   void handleAgentStatusGenId();
   /// An entry of the status directory has come or gone. One that goes is withdrawn at once; one
   /// that comes is published by the next handshake.
   void handleXcvrStatusDir( Vel::Name const & name );

 private:
   friend class AllStatusDirSm;
   struct Observers;
   /// The end of the slice: withdraws what it has published.
   void close( char const * operation );

   AllStatusDirSm * top_; // null once closed
   Vel::String sliceId_;
   Vel::Ptr<XcvrSliceStatus> agentStatus_;
   Vel::Ptr<Vel::Dir> xcvrStatusDir_;
   StatusPublisher published_;
   Vel::Ptr<AllConfigDir> sliceConfig_;
   bool initialized_ = false;
   std::unique_ptr<Observers> observers_;
};

/// The top reactor: publishes the fixed transceivers itself, and has a reactor for each slice.
class XCVR_API AllStatusDirSm : public Vel::PtrInterface {
 public:
   struct Inputs {
      Vel::Ptr<Vel::Dir> sliceStatusDir;
      Vel::Ptr<Vel::Dir> fixedStatusDir;
      Vel::Ptr<Vel::Dir> baseConfigDir;
      Vel::Ptr<AllConfigDir> fixedConfigDir;
      Vel::Ptr<Vel::Dir> agentStatusDir;
      Vel::Ptr<XcvrSliceStatus> fixedAgentStatus;
   };
   ~AllStatusDirSm() override;

   [[nodiscard]] Vel::Ptr<Vel::Dir> const & sliceStatusDir() const { return in_.sliceStatusDir; }
   [[nodiscard]] Vel::Ptr<Vel::Dir> const & fixedStatusDir() const { return in_.fixedStatusDir; }
   [[nodiscard]] Vel::Ptr<Vel::Dir> const & baseConfigDir() const { return in_.baseConfigDir; }
   [[nodiscard]] Vel::Ptr<AllConfigDir> const & fixedConfigDir() const {
      return in_.fixedConfigDir;
   }
   [[nodiscard]] Vel::Ptr<Vel::Dir> const & agentStatusDir() const { return in_.agentStatusDir; }
   [[nodiscard]] Vel::Ptr<XcvrSliceStatus> const & fixedAgentStatus() const {
      return in_.fixedAgentStatus;
   }
   [[nodiscard]] Vel::Ptr<AllNewStatusDir> const & allStatusDir() const { return published_.to(); }
   /// The end of an input: what rested on it is withdrawn, and reactors that need it are deleted.
   void sliceStatusDirDel();
   void fixedStatusDirDel();
   void baseConfigDirDel();
   void fixedConfigDirDel();
   void agentStatusDirDel();
   void fixedAgentStatusDel();

   /// The per-slice configuration directory: the entry "slice" of `baseConfigDir`; null for none.
   [[nodiscard]] Vel::Ptr<Vel::Dir> const & sliceConfigDir() const { return sliceConfigDir_; }
   void sliceConfigDirIs( Vel::Ptr<Vel::Dir> const & dir );
   [[nodiscard]] bool initialized() const { return initialized_; }
   void initializedIs( bool initialized ) { initialized_ = initialized; }
   /// The names published from the fixed status directory.
   [[nodiscard]] bool fixedXcvrs( Vel::Name const & name ) const { return published_.has( name ); }

   /// The reactor of a slice; null for none.
   [[nodiscard]] Vel::Ptr<SliceStatusSm> sliceStatusSm( Vel::String const & sliceId ) const;
   Vel::Ptr<SliceStatusSm> sliceStatusSmIs( Vel::String const & sliceId,
                                            Vel::Ptr<XcvrSliceStatus> const & agentStatus,
                                            Vel::Ptr<Vel::Dir> const & xcvrStatusDir );
   void sliceStatusSmDel( Vel::String const & sliceId );
   void sliceStatusSmDelAll();

   void handleInitialized();
   /// The handshake of the fixed transceivers.
   void handleFixedStatusGenId();
   void handleFixedStatusDir( Vel::Name const & name );
   void handleNewSlice( Vel::String const & sliceId );
   void handleBaseConfigDir( Vel::Name const & name );
   void handleEntryState( Vel::String const & sliceId );
   /// The slice's entry in the status or the agents' directory has come, gone or become another
   /// one.
   void handleSlice( Vel::String const & sliceId );

 private:
   friend class XcvrAllStatusDirSingleton; // makes it, and closes it before it lets go of it
   struct Observers;
   AllStatusDirSm( Inputs inputs, Vel::Ptr<AllNewStatusDir> allStatusDir );
   /// The end: withdraws all that was published, and observes nothing any more.
   void close();
   [[nodiscard]] Vel::Ptr<XcvrSliceStatus> agentStatusOf( Vel::String const & sliceId ) const;
   [[nodiscard]] Vel::Ptr<Vel::Dir> statusDirOf( Vel::String const & sliceId ) const;

   Inputs in_;
   StatusPublisher published_; // the fixed ones
   Vel::Ptr<Vel::Dir> sliceConfigDir_;
   bool initialized_ = false;
   std::map<Vel::String, Vel::Ptr<SliceStatusSm>> sliceStatusSm_;
   std::unique_ptr<Observers> observers_;
};

/// The entry point: the mounting process sets the six inputs and starts it once.
class XCVR_API XcvrAllStatusDirSingleton : public Vel::Entity {
 public:
   explicit XcvrAllStatusDirSingleton( Vel::Name name );
   ~XcvrAllStatusDirSingleton() override;
   VEL_ENTITY( XcvrAllStatusDirSingleton, Vel::Entity,
      // Each slice agent's directory of status entities, by slice.
      ( Reference, sliceStatusDir, onSliceStatusDir, Vel::Dir ),
      // The status entities of the fixed transceivers.
      ( Reference, fixedStatusDir, onFixedStatusDir, Vel::Dir ),
      // Its entry "slice" is the per-slice configuration directory.
      ( Reference, baseConfigDir, onBaseConfigDir, Vel::Dir ),
      ( Reference, fixedConfigDir, onFixedConfigDir, AllConfigDir ),
      // Each slice agent's XcvrSliceStatus, by slice.
      ( Reference, agentStatusDir, onAgentStatusDir, Vel::Dir ),
      ( Reference, fixedAgentStatus, onFixedAgentStatus, XcvrSliceStatus ),
      // All that is published; a child.
      ( Derived, allStatusDir, AllNewStatusDir ) );

   [[nodiscard]] Vel::Ptr<AllNewStatusDir> const & allStatusDir() const;
   Vel::Ptr<AllNewStatusDir> allStatusDirIs( Vel::Name const & name );
   [[nodiscard]] Vel::Ptr<AllStatusDirSm> const & allStatusDirSm() const { return allStatusDirSm_; }

   /// The end of an input, also of one that the top reactor has taken over. It is for good: an input
   /// that is set after the start is not taken over.
   void sliceStatusDirDel();
   void fixedStatusDirDel();
   void baseConfigDirDel();
   void fixedConfigDirDel();
   void agentStatusDirDel();
   void fixedAgentStatusDel();

   /// Creates output and top reactor. Fatal the second time, or without all inputs.
   void doStartSm();

 private:
   Vel::Owned<Vel::Ptr<AllNewStatusDir>> allStatusDir_;
   Vel::Ptr<AllStatusDirSm> allStatusDirSm_;
};

XCVR_API Vel::Ptr<XcvrAllStatusDirSingleton> xcvrAllStatusDirSingletonFactory( Vel::Name name );

} // namespace Xcvr
