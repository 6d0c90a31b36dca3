#include "Vanta/String.h"

int main() {
    return Vanta::String("tracer").empty() ? 1 : 0;
}
