/**
 * @file
 * @brief Interface of the board configuration library: the persistent key/value store.
 */
#ifndef PLATFORM_NXUCONFIG_H
#define PLATFORM_NXUCONFIG_H

#include <string>

namespace os
{
namespace bsp
{

/**
 * Access to the board's persistent key/value store.
 *
 * Objects are cheap to make; every object of every process reads and writes the same store. All
 * operations may be called from any thread.
 */
class NxuConfig
{
public:
    NxuConfig();
    virtual ~NxuConfig();
    NxuConfig(const NxuConfig&) = delete;
    NxuConfig& operator=(const NxuConfig&) = delete;

    /**
     * The value of a key; value::Empty for a key without a value.
     * @throws std::exception when the store exists but cannot be read
     */
    virtual std::string get(const std::string& key) const;

    /** Stores a value durably. Returns false, with the store unchanged, when that fails. */
    virtual bool set(const std::string& key, const std::string& value);

    /** Removes a key. Returns false, with the store unchanged, when that fails. */
    virtual bool clear(const std::string& key);
};

/** Keys. */
namespace key
{
extern const std::string FpgaVariant;   /**< Which of two FPGA variants is used. */
extern const std::string RadiolinkMode; /**< How the radio links work. */
} // namespace key

/** Values. */
namespace value
{
/** What the store answers for a key that has no value. */
extern const std::string Empty;

/** Values of key::FpgaVariant. */
namespace fpgaVariant
{
/** The second variant where the traffic FPGA word is 0, 5 or 8. */
extern const std::string TwoTdm;
/** The second variant where the traffic FPGA word is 3. */
extern const std::string OneTdmRleEqpNoMlhc;
} // namespace fpgaVariant

/** Values of key::RadiolinkMode. */
namespace radiolinkMode
{
extern const std::string Rl4; /**< Mode Rl4. */
extern const std::string Rl5; /**< Mode Rl5. */
} // namespace radiolinkMode
} // namespace value

} // namespace bsp
} // namespace os

#endif
