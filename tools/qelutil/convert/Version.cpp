namespace qel::convert {
extern const int kPlaceholder;
const int kPlaceholder = 0;
}  // namespace qel::convert
