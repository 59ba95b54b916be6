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

namespace key
{
extern const std::string FpgaVariant;
extern const std::string RadiolinkMode;
} // namespace key

namespace value
{
/** What the store answers for a key that has no value. */
extern const std::string Empty;

namespace fpgaVariant
{
extern const std::string TwoTdm;
extern const std::string OneTdmRleEqpNoMlhc;
} // namespace fpgaVariant

namespace radiolinkMode
{
extern const std::string Rl4;
extern const std::string Rl5;
} // namespace radiolinkMode
} // namespace value

} // namespace bsp
} // namespace os

#endif
