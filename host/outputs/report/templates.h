// The files in host/outputs/report/template, compiled in.
#pragma once

namespace lm::host::outputs::report::templates {

extern const char* const page;
extern const char* const event;
extern const char* const style;

}  // namespace lm::host::outputs::report::templates
