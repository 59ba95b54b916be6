// SPDX-License-Identifier: GPL-2.0
/*
 * The front LEDs, and the trigger "korvanta". While it is active on an LED, the attribute
 * "korvanta_state" shows the LED's state and takes the name of another one.
 */
#include <linux/leds.h>
#include <linux/module.h>
#include <linux/of.h>
#include <linux/platform_device.h>
#include <linux/slab.h>

struct led_state {
	const char *name;
	unsigned long on;	/* milliseconds; 0: off for good */
	unsigned long off;	/* milliseconds; 0: on for good */
};

static const struct led_state states[] = {
	{ "steady_off", 0, 1 },
	{ "steady_on", 1, 0 },
	{ "standby_hot", 900, 100 },
	{ "standby_cold", 100, 900 },
	{ "slow", 500, 500 },
	{ "fast", 125, 125 },
	{ "interrupting", 1800, 200 },
};

/* The error number with which the next state is refused, whichever LED it is for. */
static int fail_once;
module_param(fail_once, int, 0644);

/* A worker does it; the next brightness would only be that of the blinking until then. */
static void stop_blinking(struct led_classdev *led)
{
	led_set_brightness(led, LED_OFF);
	flush_work(&led->set_brightness_work);
}

static void show_state(struct led_classdev *led, const struct led_state *state)
{
	unsigned long on = state->on;
	unsigned long off = state->off;

	led_set_trigger_data(led, (void *)state);
	stop_blinking(led);
	if (on && off)
		led_blink_set(led, &on, &off);
	else
		led_set_brightness(led, on ? led->max_brightness : LED_OFF);
}

static ssize_t korvanta_state_show(struct device *dev, struct device_attribute *attr, char *buf)
{
	const struct led_state *state = led_trigger_get_drvdata(dev);

	return sysfs_emit(buf, "%s\n", state->name);
}

static ssize_t korvanta_state_store(struct device *dev, struct device_attribute *attr,
				    const char *buf, size_t size)
{
	int failure = xchg(&fail_once, 0);
	int i;

	if (failure)
		return -failure;
	for (i = 0; i < ARRAY_SIZE(states); i++) {
		if (sysfs_streq(buf, states[i].name)) {
			show_state(led_trigger_get_led(dev), &states[i]);
			return size;
		}
	}
	return -EINVAL;
}
static DEVICE_ATTR_RW(korvanta_state);

static struct attribute *korvanta_attrs[] = {
	&dev_attr_korvanta_state.attr,
	NULL
};
ATTRIBUTE_GROUPS(korvanta);

static int korvanta_activate(struct led_classdev *led)
{
	show_state(led, &states[0]);
	return 0;
}

static void korvanta_deactivate(struct led_classdev *led)
{
	stop_blinking(led);
}

static struct led_trigger korvanta_trigger = {
	.name = "korvanta",
	.activate = korvanta_activate,
	.deactivate = korvanta_deactivate,
	.groups = korvanta_groups,
};

/* No lamp is there to be switched; the LED class keeps the brightness. */
static void set_brightness(struct led_classdev *led, enum led_brightness brightness)
{
}

static int front_leds_probe(struct platform_device *pdev)
{
	struct device *dev = &pdev->dev;
	struct device_node *child;
	int err;

	err = devm_led_trigger_register(dev, &korvanta_trigger);
	if (err)
		return err;
	for_each_available_child_of_node(dev->of_node, child) {
		struct led_classdev *led = devm_kzalloc(dev, sizeof(*led), GFP_KERNEL);

		err = led ? 0 : -ENOMEM;
		if (!err) {
			led->name = child->name;
			led->max_brightness = LED_ON;
			led->brightness_set = set_brightness;
			err = devm_led_classdev_register(dev, led);
		}
		if (err) {
			of_node_put(child);
			return err;
		}
	}
	return 0;
}

static const struct of_device_id front_leds_match[] = {
	{ .compatible = "korvanta,front-leds" },
	{ }
};

static struct platform_driver front_leds_driver = {
	.probe = front_leds_probe,
	.driver = {
		.name = "korvanta-leds",
		.of_match_table = front_leds_match,
	},
};
builtin_platform_driver(front_leds_driver);
