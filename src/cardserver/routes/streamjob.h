#pragma once
#include <functional>

namespace cardserver {

class Call;
class EventStream;
struct Services;

// An event stream that runs on one of the signed-in account's stream slots: an account that
// already runs as many as it may is answered 429 before anything starts. A job that asks the
// language model once counts that call first (429 when the account has made its share).
class StreamJob {
public:
    enum class ModelCall { None, One };
    static void start(Call &call, Services &s, ModelCall modelCall,
                      std::function<void(EventStream &)> job);
};

} // namespace cardserver
