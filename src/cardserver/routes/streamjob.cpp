#include "routes/streamjob.h"

#include "app/services.h"
#include "http/eventstream.h"
#include "limits/callrate.h"
#include "limits/streamslots.h"

namespace cardserver {

void StreamJob::start(Call &call, Services &s, ModelCall modelCall,
                      std::function<void(EventStream &)> job)
{
    StreamSlots::Slot slot = s.streams.take(call.userId);
    if (modelCall == ModelCall::One)
        s.modelCalls.takeOrRefuse(call.userId);
    EventStream::start(call, [slot, job = std::move(job)](EventStream &stream) mutable {
        job(stream);
        slot.reset(); // the job is over, whenever the reply itself goes
    });
}

} // namespace cardserver
