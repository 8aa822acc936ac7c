// A help-desk page in a host: why does this user see what they see?
// Usage: why REPOSITORY CONNECTION USER
#include "analysis/trace/Reasons.h"
#include "analysis/trace/Tracer.h"

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

using namespace secm::analysis;

void PrintField(const FieldTrace& field)
{
    std::cout << field.rule->name << ": ";
    if (field.isHeld) {
        std::cout << "held outright, so it does not restrict the user\n";
        return;
    }
    for (const ValueTrace& value : field.values) {
        std::cout << "'" << value.resource << "'" << (value.value.empty() ? " (dropped) " : " ");
    }
    std::cout << (field.clause.empty() ? "give no clause" : "give " + field.clause) << "\n";
    for (const ConditionTrace& condition : field.conditions) {
        if (condition.text.empty()) {
            std::cout << "  condition" << condition.rule->number << " is left out: " << WhyEmpty(condition) << "\n";
        }
    }
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc != 4) {
        throw std::runtime_error("usage: why REPOSITORY CONNECTION USER");
    }
    Tracer tracer(argv[1]); // reads what CFG_REPOSITORY names
    const unsigned timeoutSeconds = 5;
    if (!tracer.Connect(argv[2], timeoutSeconds)) {
        throw std::runtime_error("no connection to the security database; the log says why");
    }
    Request request;
    request.userName = argv[3];
    request.ipAddress = "127.0.0.1";
    const Trace trace = tracer.Explain(request);
    std::cout << request.userName << ": " << NameOf(trace.answer.outcome) << " " << WhyNotComposed(trace) << "\n";
    for (const FieldTrace& field : trace.fields) {
        PrintField(field);
    }
    std::cout << "filter: " << trace.answer.filter << "\n";
} catch (const std::exception& error) {
    std::cerr << "why: " << error.what() << "\n";
    return 1;
}
