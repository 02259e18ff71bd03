// What fmt's shared library holds, from fmt's own headers, so that the command starts without that library.
// It is compiled once, here: fmt::fmt-header-only would compile it again in every file.
#include <fmt/format-inl.h>

template auto fmt::detail::thousands_sep_impl<char>(locale_ref) -> thousands_sep_result<char>;
template auto fmt::detail::decimal_point_impl<char>(locale_ref) -> char;
template auto fmt::detail::dragonbox::to_decimal<float>(float) noexcept -> decimal_fp<float>;
template auto fmt::detail::dragonbox::to_decimal<double>(double) noexcept -> decimal_fp<double>;
