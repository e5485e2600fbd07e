#pragma once

#include <pybind11/pybind11.h>

// One function per analyser adds its part of the module.
namespace orvpy {
void AddUrl(pybind11::module_& m);
void AddLinks(pybind11::module_& m);
void AddSearch(pybind11::module_& m);
void AddNodes(pybind11::module_& m);
void AddEstimate(pybind11::module_& m);
void AddPageLinks(pybind11::module_& m);

// A tuple type with named fields (a struct sequence); the first `visible`
// fields make the tuple, the others are attributes only.
PyTypeObject* NewRecordType(pybind11::module_& m, const char* name, const char* doc,
                            std::initializer_list<const char*> fields, int visible = -1);
}  // namespace orvpy
