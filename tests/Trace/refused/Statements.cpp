// Trace statements that must not compile, one a case, and one that must. Each case is compiled by
// a test of its own, which looks for the reason in what the compiler says.
#include "Trace/Trace.h"

void statement(Trace::Handle const& trace) {
#if defined(TOO_FEW_VALUES)
    Trace::twinlog(trace, 7, "handleRequest:client:%s reqId:%s", "leaf");
#elif defined(TOO_MANY_VALUES)
    Trace::twinlog(trace, 7, "handleRequest:client:%s", "leaf", 7);
#elif defined(LEVEL_TOO_HIGH)
    Trace::twinlog(trace, 10, "handleRequest:client:%s", "leaf");
#elif defined(NO_TRACE_VALUE)
    Trace::twinlog(trace, 7, "handleRequest:client:%s", 1.5);
#elif defined(TOO_MANY_FOR_A_RECORD)
    Trace::twinlog(trace, 7, "%s%s%s%s%s%s%s%s%s%s%s%s%s", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12,
                   13);
#elif defined(TEXT_THAT_IS_NO_CONSTANT)
    std::string const text = "handleRequest:";
    Trace::twinlog(trace, 7, text.c_str());
#else
    Trace::twinlog(trace, 7, "handleRequest:client:%s", "leaf");
#endif
}
