#pragma once

/// Functions as one, for std::visit: the type of the geometry chooses among them.
template <class... Functions>
struct KuuGeometryOverloads : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
KuuGeometryOverloads(Functions...) -> KuuGeometryOverloads<Functions...>;
