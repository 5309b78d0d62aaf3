#include "message.h"

const char MessageBase::DELIM;

MessageBase::MessageBase(char* /*msg*/, unsigned short /*size*/, unsigned long /*sigNo*/) {}

MessageBase::~MessageBase() = default;
