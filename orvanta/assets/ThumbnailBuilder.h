#pragma once
// ThumbnailBuilder: fills a thumbnail store in the background for every asset of a list that lacks a
// good thumbnail, on several tasks at once, reporting each asset to a listener.
//
// Contract: start() takes the list's ids in the list's order (once, on its first call) and begins
// the tasks (QueueTask), which share the ids: each reads its next asset's properties from the list
// (under the list's lock), makes an Asset of its own from them, and, unless the store holds a good
// thumbnail of it, has the store make one (ThumbnailDb::updateThumbnail; a thumbnail another thread
// is making meanwhile, the grid's for one, is waited for, not made twice). After each asset a task
// sends a Progress event to the listener, from its own thread. An asset that left the list, or
// whose file has gone since it was catalogued, is passed over as kGone; the work goes on.
//
// stop() hands out no more assets and waits until the tasks have finished the ones in hand; start()
// again goes on with the rest. isRunning() is true while a task runs. The builder must outlive its
// tasks: the destructor stops them. The store and the list are held; the listener is not owned and
// must outlive the builder's events (an EventListener takes its pending events with it).

#include <cstddef>
#include <memory>
#include <vector>

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/QueueTask.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/foundation/WorkQueue.h"

namespace Orvanta {

class AssetList;
class ThumbnailDb;

class ThumbnailBuilder : public IOwned {
public:
    enum Outcome : int {
        kMade = 1,  // a thumbnail was made and stored
        kGood,      // the store held a good one already
        kGone,      // the asset left the list, or its file has gone
        kFailed,    // no thumbnail could be made (error: the last error of the task's thread)
    };

    // One asset done: its place in the list's order when the builder started, its id, the outcome.
    class Progress : public Event {
    public:
        std::size_t index;
        UniqueID id;
        Outcome outcome;
        int error;

    private:
        friend class ThumbnailBuilder;
        Progress(std::size_t i, const UniqueID& d, Outcome o, int e)
            : index(i), id(d), outcome(o), error(e) {}
    };

    // tasks: how many at once (0: one per core).
    static ThumbnailBuilder* create(ThumbnailDb* store, AssetList* assets, EventListener* listener,
                                    int tasks);
    ~ThumbnailBuilder() override;

    void start();
    void stop();
    bool isRunning();
    // The assets to do (0 before the first start), and how many have been handed to tasks.
    std::size_t getTotal() const { return mQueue.getCount(); }
    std::size_t getStarted() const { return mQueue.getClaimed(); }
    // The tasks, for a host's loop to wait on.
    std::vector<Task*> getTasks();

private:
    class BuildTask : public QueueTask {
    public:
        explicit BuildTask(ThumbnailBuilder* builder) : QueueTask(builder->mQueue), mBuilder(builder) {}
        ~BuildTask() override { killTask(); }

    protected:
        void doItem(std::size_t index) override;

    private:
        ThumbnailBuilder* mBuilder;
    };

    ThumbnailBuilder(ThumbnailDb* store, AssetList* assets, EventListener* listener, int tasks);
    Outcome build(const UniqueID& id);

    OwnedPtr<ThumbnailDb> mStore;
    OwnedPtr<AssetList> mAssets;
    EventListener* mListener;
    std::vector<UniqueID> mIds;
    bool mListed = false;
    WorkQueue mQueue;
    std::vector<std::unique_ptr<BuildTask>> mTasks;
};

}  // namespace Orvanta
