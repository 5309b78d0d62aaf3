// What the build wants most: a small library, or a fast one.
#ifndef BCI_CODEC_OPTIMIZE_H
#define BCI_CODEC_OPTIMIZE_H

namespace bci::codec
{

#if BCI_OPTIMIZE_SPEED
inline constexpr bool kForSpeed = true;
// For functions that have to be unrolled, or whose arguments have to stay in registers.
#define BCI_INLINE [[gnu::always_inline]] inline
#else
inline constexpr bool kForSpeed = false;
#define BCI_INLINE inline
#endif

// For what is smaller in place than as a call, in either case.
#define BCI_ALWAYS_INLINE [[gnu::always_inline]] inline

} // namespace bci::codec

#endif
