/**
 * @file
 * @brief Marks the public interface of libbsp.
 */
#ifndef BSP_EXPORT_H
#define BSP_EXPORT_H

/** The library is built with hidden visibility; only what carries this mark is exported. */
#define BSP_API __attribute__((visibility("default")))

/** Keeps a private member of a public class inside the library. */
#define BSP_LOCAL __attribute__((visibility("hidden")))

#endif
