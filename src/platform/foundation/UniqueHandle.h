// zv::UniqueHandle owns a handle of a C library: a std::unique_ptr whose deleter calls the
// library's own release function (given as a template argument) on a non-null handle, so that every
// handle is released on every path, errors and early returns included.
//
//     UniqueHandle<CURL, curl_easy_cleanup> easy(curl_easy_init());
#pragma once

#include <memory>

namespace zv {

template <auto Release>
struct HandleDeleter {
  template <class T>
  void operator()(T* handle) const {
    if (handle) Release(handle);
  }
};

template <class T, auto Release>
using UniqueHandle = std::unique_ptr<T, HandleDeleter<Release>>;

}  // namespace zv
