#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <optional>
#include <string>

#include "orvwebpage/OrvHttpLimits.h"

// One function per analyser adds its part of the module.
namespace orvpy {
void AddUrl(pybind11::module_& m);
void AddLinks(pybind11::module_& m);
void AddSearch(pybind11::module_& m);
void AddNodes(pybind11::module_& m);
void AddEstimate(pybind11::module_& m);
void AddPageLinks(pybind11::module_& m);
void AddSize(pybind11::module_& m);

// The limits of a crawl from a Python call's arguments; ValueError when one is out of range.
// None takes the tool's defaults for the request budget, the deadline and the memory budget
// (max_memory: bytes, or a text such as "512M"), and 0 lifts each.
OrvHttpSettings MakeHttpSettings(std::optional<int64_t> maxRequests, std::optional<double> timeout,
                                 std::optional<double> deadline, std::optional<double> delay,
                                 const std::optional<std::string>& userAgent, bool obeyRobots,
                                 const pybind11::object& maxMemory);

// A result's partial and reason fields for the limit that cut a crawl, empty for none.
PyObject* NewReasonText(const std::string& reason);

// "a.test,*.b.test:8080" from a text or an iterable of texts; TypeError otherwise.
std::string HostPatterns(const pybind11::object& hosts);

// A tuple type with named fields (a struct sequence); the first `visible`
// fields make the tuple, the others are attributes only.
PyTypeObject* NewRecordType(pybind11::module_& m, const char* name, const char* doc,
                            std::initializer_list<const char*> fields, int visible = -1);
}  // namespace orvpy
