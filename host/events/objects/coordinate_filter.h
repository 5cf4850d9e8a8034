// A Kalman filter of one coordinate that moves at a nearly constant velocity.
#pragma once

namespace lm::host::events::objects {

// Kalman 1960, with white noise as acceleration. Centre and size of a box are filtered separately: with
// independent noise, a filter of all of them at once gives the same.
class CoordinateFilter {
 public:
  CoordinateFilter(double value, double variance, double velocity_variance)
      : value_(value), variance_(variance), velocity_variance_(velocity_variance) {}

  // `noise`: variance that the velocity gains per second.
  void predict(double seconds, double noise) {
    value_ += velocity_ * seconds;
    variance_ += seconds * (2 * covariance_ + seconds * (velocity_variance_ + noise * seconds / 3));
    covariance_ += seconds * (velocity_variance_ + noise * seconds / 2);
    velocity_variance_ += noise * seconds;
  }

  void correct(double measured, double measured_variance) {
    const double total = variance_ + measured_variance;
    const double gain = variance_ / total;
    const double velocity_gain = covariance_ / total;
    const double error = measured - value_;
    value_ += gain * error;
    velocity_ += velocity_gain * error;
    velocity_variance_ -= velocity_gain * covariance_;
    covariance_ *= 1 - gain;
    variance_ *= 1 - gain;
  }

  // Multiplies the velocity by a factor of at most 1.
  void slow_down(double factor) {
    velocity_ *= factor;
    covariance_ *= factor;
    velocity_variance_ *= factor * factor;
  }

  // Takes over another one's place, but not its velocity.
  void restart(const CoordinateFilter& at) {
    value_ = at.value_;
    variance_ = at.variance_;
    covariance_ = 0;
  }

  double value() const { return value_; }
  double velocity() const { return velocity_; }
  double variance() const { return variance_; }

 private:
  double value_;
  double velocity_ = 0;
  double variance_;
  double velocity_variance_;
  double covariance_ = 0;
};

}  // namespace lm::host::events::objects
