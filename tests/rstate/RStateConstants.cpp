#include "RStateConstants.h"

#include "RState.h"

static_assert(__cplusplus == 201103L, "the header is to serve users of C++11");

std::vector<const std::int32_t*> addressesOfConstants()
{
    return {&RState::MaxMinorSize1Char,  &RState::MaxMinorSize2Chars, &RState::MaxMinorSize3Chars,
            &RState::MaxMinorSize4Chars, &RState::MaxMinorPos1,       &RState::MaxMinorPos2,
            &RState::MaxMinorPos3,       &RState::MaxMinorPos4,       &RState::MaxRStateLen};
}
