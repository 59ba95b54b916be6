// SPDX-License-Identifier: GPL-2.0
/*
 * Why the board restarted: what a board's reset controller and boot loader find out together.
 *
 * Of the system control registers, memory that keeps its contents over a restart, word 0 is the cause
 * of the last restart. Word 1 is what the next one will be: a mark, and the cause; whatever is there
 * without the mark means that the power was off.
 */
#include <linux/io.h>
#include <linux/module.h>
#include <linux/notifier.h>
#include <linux/of_address.h>
#include <linux/panic_notifier.h>
#include <linux/platform_device.h>
#include <linux/reboot.h>

enum cause { COLD, WARM, WATCHDOG, UNKNOWN };

enum { LAST = 0, NEXT = 4, COUNT = 8 };

#define MARK 0x4b525600
#define MARK_MASK 0xffffff00

static void __iomem *registers;

/* How often the board has restarted since its power came. */
static unsigned int restarts;
module_param(restarts, uint, 0444);

/* The kernel died, and nobody asked for the restart. */
static bool died;

static int note_death(struct notifier_block *block, unsigned long event, void *message)
{
	died = true;
	return NOTIFY_DONE;
}

static struct notifier_block at_death = {
	.notifier_call = note_death,
};

static enum cause requested_cause(unsigned long mode, const char *command)
{
	if (died)
		return UNKNOWN;
	if (command && !strcmp(command, "watchdog"))
		return WATCHDOG;
	return mode == REBOOT_COLD ? COLD : WARM;
}

static int note_cause(struct notifier_block *block, unsigned long mode, void *command)
{
	writel(MARK | requested_cause(mode, command), registers + NEXT);
	return NOTIFY_DONE;
}

static struct notifier_block before_restart = {
	.notifier_call = note_cause,
	.priority = 255,
};

static int restart_probe(struct platform_device *pdev)
{
	u32 next;

	registers = of_iomap(pdev->dev.of_node, 0);
	if (!registers)
		return -ENOMEM;
	next = readl(registers + NEXT);
	if ((next & MARK_MASK) == MARK) {
		writel(next & ~MARK_MASK, registers + LAST);
		restarts = readl(registers + COUNT) + 1;
	} else {
		writel(COLD, registers + LAST);
	}
	writel(restarts, registers + COUNT);
	/* For a restart that passes by the kernel. */
	writel(MARK | UNKNOWN, registers + NEXT);
	atomic_notifier_chain_register(&panic_notifier_list, &at_death);
	return register_restart_handler(&before_restart);
}

static const struct of_device_id restart_match[] = {
	{ .compatible = "korvanta,restart" },
	{ }
};

static struct platform_driver restart_driver = {
	.probe = restart_probe,
	.driver = {
		.name = "korvanta-restart",
		.of_match_table = restart_match,
	},
};
builtin_platform_driver(restart_driver);
