// Arrays and dictionaries that work; dictionaries keep the order in which they were filled.
#include "tests/macos_runtime/fakes/Fakes.hpp"

// All of it in one batch.
static NSUInteger enumerate(NSFastEnumerationState* state, const std::vector<id>& items) {
    if (state->state++ != 0) return 0;
    state->itemsPtr = reinterpret_cast<id __unsafe_unretained*>(const_cast<id*>(items.data()));
    state->mutationsPtr = state->extra;
    return items.size();
}

@implementation NSArray {
@package
    std::vector<id> items_;
}
+ (instancetype)arrayWithObjects:(const id[])objects count:(NSUInteger)cnt {
    NSArray* const array = [self new];
    array->items_.assign(objects, objects + cnt);
    return array;
}
- (id)firstObject {
    return items_.empty() ? nil : items_.front();
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)len {
    return enumerate(state, items_);
}
- (NSString*)description {
    std::string all;
    for (id item : items_) all += (all.empty() ? "" : ", ") + macrt::describe(item);
    return macrt::makeString("[" + all + "]");
}
@end

@implementation NSMutableArray
+ (instancetype)arrayWithCapacity:(NSUInteger)numItems {
    return [self new];
}
- (void)addObject:(id)anObject {
    items_.push_back(anObject);
}
@end

@implementation NSDictionary {
@package
    std::vector<id> keys_;
    std::vector<id> values_;
}
+ (instancetype)dictionaryWithObjects:(const id[])objects
                              forKeys:(const id[])keys
                                count:(NSUInteger)cnt {
    NSDictionary* const dictionary = [self new];
    dictionary->keys_.assign(keys, keys + cnt);
    dictionary->values_.assign(objects, objects + cnt);
    return dictionary;
}
- (id)objectForKeyedSubscript:(id)key {
    for (std::size_t i = 0; i < keys_.size(); ++i)
        if ([keys_[i] isEqual:key]) return values_[i];
    return nil;
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)len {
    return enumerate(state, keys_);
}
- (NSString*)description {
    std::string all;
    for (std::size_t i = 0; i < keys_.size(); ++i)
        all +=
            (i == 0 ? "" : ", ") + macrt::describe(keys_[i]) + ": " + macrt::describe(values_[i]);
    return macrt::makeString("{" + all + "}");
}
@end

@implementation NSMutableDictionary
+ (instancetype)dictionaryWithCapacity:(NSUInteger)numItems {
    return [self new];
}
- (void)setObject:(id)obj forKeyedSubscript:(id)key {
    for (std::size_t i = 0; i < keys_.size(); ++i)
        if ([keys_[i] isEqual:key]) return void(values_[i] = obj);
    keys_.push_back([key copy]);
    values_.push_back(obj);
}
@end

namespace macrt {
const std::vector<id>& itemsOf(NSArray* array) { return array->items_; }
}  // namespace macrt
